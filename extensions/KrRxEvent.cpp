// The event interface: the abstract broadcaster and the listener base whose
// callbacks all do nothing.

#include "krrxevent.h"

#include "runtime/KrRxCoreClass.h"

KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRxEvent, KrRxObject)
KRRX_CORE_CONS_DEFINE_MEMBERS(KrRxEventReactor, KrRxObject)

static_assert(sizeof(KrRxEvent) == sizeof(KrRxObject) && sizeof(KrRxEventReactor) == sizeof(KrRxObject),
              "the event classes hold no data");

void KrRxEventReactor::databaseConstructed(KrDbDatabase*) {}
void KrRxEventReactor::databaseToBeDestroyed(KrDbDatabase*) {}
void KrRxEventReactor::fileOpened(KrDbDatabase*, wchar_t*) {}
void KrRxEventReactor::initialFileOpenComplete(KrDbDatabase*) {}
void KrRxEventReactor::beginSave(KrDbDatabase*, const wchar_t*) {}
void KrRxEventReactor::saveComplete(KrDbDatabase*, const wchar_t*) {}
void KrRxEventReactor::abortSave(KrDbDatabase*) {}
void KrRxEventReactor::beginDxfIn(KrDbDatabase*) {}
void KrRxEventReactor::abortDxfIn(KrDbDatabase*) {}
void KrRxEventReactor::dxfInComplete(KrDbDatabase*) {}
void KrRxEventReactor::beginDxfOut(KrDbDatabase*) {}
void KrRxEventReactor::abortDxfOut(KrDbDatabase*) {}
void KrRxEventReactor::dxfOutComplete(KrDbDatabase*) {}
void KrRxEventReactor::beginInsert(KrDbDatabase*, const KrGeMatrix3d&, KrDbDatabase*) {}
void KrRxEventReactor::beginInsert(KrDbDatabase*, const wchar_t*, KrDbDatabase*) {}
void KrRxEventReactor::otherInsert(KrDbDatabase*, KrDbIdMapping&, KrDbDatabase*) {}
void KrRxEventReactor::abortInsert(KrDbDatabase*) {}
void KrRxEventReactor::endInsert(KrDbDatabase*) {}
void KrRxEventReactor::wblockNotice(KrDbDatabase*) {}
void KrRxEventReactor::beginWblock(KrDbDatabase*, KrDbDatabase*) {}
void KrRxEventReactor::beginWblock(KrDbDatabase*, KrDbDatabase*, KrDbObjectId) {}
void KrRxEventReactor::beginWblock(KrDbDatabase*, KrDbDatabase*, const KrGePoint3d*&) {}
void KrRxEventReactor::otherWblock(KrDbDatabase*, KrDbIdMapping&, KrDbDatabase*) {}
void KrRxEventReactor::abortWblock(KrDbDatabase*) {}
void KrRxEventReactor::endWblock(KrDbDatabase*) {}
void KrRxEventReactor::beginWblockObjects(KrDbDatabase*, KrDbIdMapping&) {}
void KrRxEventReactor::beginDeepClone(KrDbDatabase*, KrDbIdMapping&) {}
void KrRxEventReactor::beginDeepCloneXlation(KrDbIdMapping&, Kesu::ErrorStatus*) {}
void KrRxEventReactor::abortDeepClone(KrDbIdMapping&) {}
void KrRxEventReactor::endDeepClone(KrDbIdMapping&) {}
void KrRxEventReactor::partialOpenNotice(KrDbDatabase*) {}
void KrRxEventReactor::objectsLazyLoaded(const KrArray<KrDbObjectId>&) {}
void KrRxEventReactor::beginAttach(KrDbDatabase*, const wchar_t*, KrDbDatabase*) {}
void KrRxEventReactor::otherAttach(KrDbDatabase*, KrDbDatabase*) {}
void KrRxEventReactor::abortAttach(KrDbDatabase*) {}
void KrRxEventReactor::endAttach(KrDbDatabase*) {}
void KrRxEventReactor::redirected(KrDbObjectId, KrDbObjectId) {}
void KrRxEventReactor::comandeered(KrDbDatabase*, KrDbObjectId, KrDbDatabase*) {}
void KrRxEventReactor::beginRestore(KrDbDatabase*, const wchar_t*, KrDbDatabase*) {}
void KrRxEventReactor::abortRestore(KrDbDatabase*) {}
void KrRxEventReactor::endRestore(KrDbDatabase*) {}
void KrRxEventReactor::xrefSubcommandBindItem(KrDbDatabase*, int, KrDbObjectId) {}
void KrRxEventReactor::xrefSubcommandAttachItem(KrDbDatabase*, int, const wchar_t*) {}
void KrRxEventReactor::xrefSubcommandOverlayItem(KrDbDatabase*, int, const wchar_t*) {}
void KrRxEventReactor::xrefSubcommandDetachItem(KrDbDatabase*, int, KrDbObjectId) {}
void KrRxEventReactor::xrefSubcommandPathItem(int, KrDbObjectId, const wchar_t*) {}
void KrRxEventReactor::xrefSubcommandReloadItem(KrDbDatabase*, int, KrDbObjectId) {}
void KrRxEventReactor::xrefSubcommandUnloadItem(KrDbDatabase*, int, KrDbObjectId) {}
void KrRxEventReactor::xrefSubCommandStart(KrDbDatabase*, KrXrefSubCommand, const KrArray<KrDbObjectId>&,
                                           const wchar_t* const*, const wchar_t* const*, bool&) {}
void KrRxEventReactor::xrefSubCommandAborted(KrDbDatabase*, KrXrefSubCommand, const KrArray<KrDbObjectId>&,
                                             const wchar_t* const*, const wchar_t* const*) {}
void KrRxEventReactor::xrefSubCommandEnd(KrDbDatabase*, KrXrefSubCommand, const KrArray<KrDbObjectId>&,
                                         const wchar_t* const*, const wchar_t* const*) {}
void KrRxEventReactor::preXrefLockFile(KrDbDatabase*, KrDbObjectId) {}
void KrRxEventReactor::beginUnitsChange(KrDbDatabase*, const KrDb::UnitsValue&, bool) {}
void KrRxEventReactor::endUnitsChange(KrDbDatabase*, const KrDb::UnitsValue&, bool) {}
