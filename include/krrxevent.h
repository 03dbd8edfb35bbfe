#pragma once
/// @file
/// Database-wide events. The host's database library derives its broadcaster
/// from KrRxEvent and fires the callbacks; a module derives a listener from
/// KrRxEventReactor, overrides the callbacks it needs (all others do
/// nothing) and registers it with the host's event object.
///
/// @code
///   class MySaveWatcher : public KrRxEventReactor {
///     void beginSave(KrDbDatabase* db, const wchar_t* fileName) override { flushCaches(db); }
///   };
///   hostEvent->addReactor(&myWatcher);   // remove it before it is destroyed
///
/// @endcode
/// The callbacks' order is the calling contract with modules: keep it, and
/// keep the spellings (comandeered, xrefSubcommand... beside xrefSubCommand...).

#include "krerrorstatus.h"
#include "krrxobject.h"

/// Types of the host's database and geometry libraries, passed by pointer or
/// reference only.
class KrDbDatabase;
class KrDbIdMapping;
class KrGeMatrix3d;
class KrGePoint3d;
template <typename T>
class KrArray;
namespace KrDb {
/// The host's drawing units; the host's definition keeps int as underlying type.
enum UnitsValue : int;
}  // namespace KrDb

/// The host's external-reference subcommand, passed by value; the host
/// defines its values and keeps int as underlying type.
enum KrXrefSubCommand : int;

/// An object id of the host's database, passed by value. The host's own id
/// type must keep this layout: one pointer-sized handle, trivially copyable.
class KrDbObjectId {
 public:
  KrDbObjectId() = default;
  /// The id of a handle, the handle, whether it is null, and equality by handle.
  ///@{
  explicit KrDbObjectId(void* handle) : mpHandle(handle) {}
  void* handle() const { return mpHandle; }
  bool isNull() const { return mpHandle == nullptr; }
  bool operator==(const KrDbObjectId& other) const { return mpHandle == other.mpHandle; }
  bool operator!=(const KrDbObjectId& other) const { return mpHandle != other.mpHandle; }
  ///@}

 private:
  void* mpHandle = nullptr;
};
static_assert(sizeof(KrDbObjectId) == 8, "an object id is one pointer-sized handle");

class KrRxEventReactor;

/// The broadcaster, implemented by the host.
class KR1ST_API KrRxEvent : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRxEvent);

 public:
  /// Adds or removes a listener; the event never owns it.
  ///@{
  virtual void addReactor(KrRxEventReactor* reactor) = 0;
  virtual void removeReactor(KrRxEventReactor* reactor) = 0;
  ///@}
};

/// The base of every listener; every callback does nothing.
class KR1ST_API KrRxEventReactor : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRxEventReactor);

 public:
  /// The host's database events, each named after what happened; the host calls them, a listener overrides those it needs.
  ///@{
  virtual void databaseConstructed(KrDbDatabase* database);
  virtual void databaseToBeDestroyed(KrDbDatabase* database);
  virtual void fileOpened(KrDbDatabase* database, wchar_t* fileName);
  virtual void initialFileOpenComplete(KrDbDatabase* database);
  virtual void beginSave(KrDbDatabase* database, const wchar_t* intendedName);
  virtual void saveComplete(KrDbDatabase* database, const wchar_t* actualName);
  virtual void abortSave(KrDbDatabase* database);
  virtual void beginDxfIn(KrDbDatabase* database);
  virtual void abortDxfIn(KrDbDatabase* database);
  virtual void dxfInComplete(KrDbDatabase* database);
  virtual void beginDxfOut(KrDbDatabase* database);
  virtual void abortDxfOut(KrDbDatabase* database);
  virtual void dxfOutComplete(KrDbDatabase* database);
  virtual void beginInsert(KrDbDatabase* to, const KrGeMatrix3d& transform, KrDbDatabase* from);
  virtual void beginInsert(KrDbDatabase* to, const wchar_t* blockName, KrDbDatabase* from);
  virtual void otherInsert(KrDbDatabase* to, KrDbIdMapping& idMap, KrDbDatabase* from);
  virtual void abortInsert(KrDbDatabase* to);
  virtual void endInsert(KrDbDatabase* to);
  virtual void wblockNotice(KrDbDatabase* database);
  virtual void beginWblock(KrDbDatabase* to, KrDbDatabase* from);
  virtual void beginWblock(KrDbDatabase* to, KrDbDatabase* from, KrDbObjectId blockId);
  virtual void beginWblock(KrDbDatabase* to, KrDbDatabase* from, const KrGePoint3d*& insertionPoint);
  virtual void otherWblock(KrDbDatabase* to, KrDbIdMapping& idMap, KrDbDatabase* from);
  virtual void abortWblock(KrDbDatabase* to);
  virtual void endWblock(KrDbDatabase* to);
  virtual void beginWblockObjects(KrDbDatabase* from, KrDbIdMapping& idMap);
  virtual void beginDeepClone(KrDbDatabase* to, KrDbIdMapping& idMap);
  virtual void beginDeepCloneXlation(KrDbIdMapping& idMap, Kesu::ErrorStatus* status);
  virtual void abortDeepClone(KrDbIdMapping& idMap);
  virtual void endDeepClone(KrDbIdMapping& idMap);
  virtual void partialOpenNotice(KrDbDatabase* database);
  virtual void objectsLazyLoaded(const KrArray<KrDbObjectId>& objectIds);
  virtual void beginAttach(KrDbDatabase* to, const wchar_t* fileName, KrDbDatabase* from);
  virtual void otherAttach(KrDbDatabase* to, KrDbDatabase* from);
  virtual void abortAttach(KrDbDatabase* from);
  virtual void endAttach(KrDbDatabase* to);
  virtual void redirected(KrDbObjectId newId, KrDbObjectId oldId);
  virtual void comandeered(KrDbDatabase* to, KrDbObjectId id, KrDbDatabase* from);
  virtual void beginRestore(KrDbDatabase* to, const wchar_t* blockName, KrDbDatabase* from);
  virtual void abortRestore(KrDbDatabase* to);
  virtual void endRestore(KrDbDatabase* to);
  virtual void xrefSubcommandBindItem(KrDbDatabase* host, int activity, KrDbObjectId blockId);
  virtual void xrefSubcommandAttachItem(KrDbDatabase* host, int activity, const wchar_t* path);
  virtual void xrefSubcommandOverlayItem(KrDbDatabase* host, int activity, const wchar_t* path);
  virtual void xrefSubcommandDetachItem(KrDbDatabase* host, int activity, KrDbObjectId blockId);
  virtual void xrefSubcommandPathItem(int activity, KrDbObjectId blockId, const wchar_t* newPath);
  virtual void xrefSubcommandReloadItem(KrDbDatabase* host, int activity, KrDbObjectId blockId);
  virtual void xrefSubcommandUnloadItem(KrDbDatabase* host, int activity, KrDbObjectId blockId);
  virtual void xrefSubCommandStart(KrDbDatabase* host, KrXrefSubCommand command,
                                   const KrArray<KrDbObjectId>& blockIds, const wchar_t* const* names,
                                   const wchar_t* const* paths, bool& vetoed);
  virtual void xrefSubCommandAborted(KrDbDatabase* host, KrXrefSubCommand command,
                                     const KrArray<KrDbObjectId>& blockIds, const wchar_t* const* names,
                                     const wchar_t* const* paths);
  virtual void xrefSubCommandEnd(KrDbDatabase* host, KrXrefSubCommand command,
                                 const KrArray<KrDbObjectId>& blockIds, const wchar_t* const* names,
                                 const wchar_t* const* paths);
  virtual void preXrefLockFile(KrDbDatabase* database, KrDbObjectId blockId);
  virtual void beginUnitsChange(KrDbDatabase* database, const KrDb::UnitsValue& units, bool scaling);
  virtual void endUnitsChange(KrDbDatabase* database, const KrDb::UnitsValue& units, bool scaling);
  ///@}
};
