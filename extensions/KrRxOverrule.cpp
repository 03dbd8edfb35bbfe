// Overrules: per-class overrule lists, attached as protocol extensions, and
// the lookup that picks the overrule to act for an object.

#include "krrxoverrule.h"

#include <memory>

#include "krrxclass.h"
#include "runtime/KrRxClassAttachments.h"
#include "runtime/KrRxCoreClass.h"
#include "runtime/KrRxGrowArray.h"
#include "runtime/KrRxImpClass.h"

KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRxOverruleBase, KrRxObject)
KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRxOverrule, KrRxOverruleBase)
KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRxQueryXOverrule, KrRxOverrule)
KRRX_CORE_CONS_DEFINE_MEMBERS(KrRxOverruleInternals, KrRxObject)

namespace {

// The overrule list attached to a class goes with the class.
void releaseOverruleList(KrRxImpClass* cls) { delete cls->ownX(KrRxOverruleInternals::desc()); }
[[maybe_unused]] const bool overruleListReleaseInstalled = krrxAddClassAttachmentRelease(releaseOverruleList);

}  // namespace

static_assert(sizeof(KrRxOverruleBase) == sizeof(KrRxObject) + sizeof(void*),
              "an overrule holds one pointer-sized member after the root object");

bool KrRxOverruleInternals::mIsOverruling = false;

// ---- KrRxOverrule: the public face of the static operations ----

Kesu::ErrorStatus KrRxOverrule::addOverrule(KrRxClass* cls, KrRxOverrule* overrule, bool addAtLast) {
  return KrRxOverruleInternals::addOverrule(cls, overrule, addAtLast);
}

Kesu::ErrorStatus KrRxOverrule::removeOverrule(KrRxClass* cls, KrRxOverrule* overrule) {
  return KrRxOverruleInternals::removeOverrule(cls, overrule);
}

void KrRxOverrule::setIsOverruling(bool isOverruling) { KrRxOverruleInternals::mIsOverruling = isOverruling; }

bool KrRxOverrule::isOverruling() { return KrRxOverruleInternals::mIsOverruling; }

bool KrRxOverrule::hasOverrule(const KrRxObject* object, KrRxClass* overruleClass) {
  return KrRxOverruleInternals::hasOverrule(object, overruleClass);
}

KrRxObject* KrRxQueryXOverrule::queryX(const KrRxObject* object, const KrRxClass* protocolClass) const {
  return object ? object->subQueryX(protocolClass) : nullptr;
}

// ---- KrRxOverruleInternals ----

KrRxOverruleInternals::KrRxOverruleInternals() : mpOverrules(new KrRxGrowArray<KrRxOverrule*>()) {}

KrRxOverruleInternals::~KrRxOverruleInternals() {
  mpOverrules->release();
  delete mpOverrules;
}

KrRxOverruleInternals* KrRxOverruleInternals::ownListOf(KrRxClass* cls) {
  return static_cast<KrRxOverruleInternals*>(cls->impObj()->ownX(desc()));
}

Kesu::ErrorStatus KrRxOverruleInternals::addOverrule(KrRxClass* cls, KrRxOverrule* overrule, bool addAtLast) {
  if (!cls || !overrule) return Kesu::eInvalidInput;
  KrRxOverruleInternals* list = ownListOf(cls);
  if (!list) {
    std::unique_ptr<KrRxOverruleInternals> made(new KrRxOverruleInternals());
    cls->addX(desc(), made.get());
    list = made.release();
  }
  return list->addOverrule(overrule, addAtLast);
}

Kesu::ErrorStatus KrRxOverruleInternals::removeOverrule(KrRxClass* cls, KrRxOverrule* overrule) {
  KrRxOverruleInternals* list = cls ? ownListOf(cls) : nullptr;
  return list ? list->removeOverrule(overrule) : Kesu::eKeyNotFound;
}

bool KrRxOverruleInternals::hasOverrule(const KrRxObject* object, KrRxClass* overruleClass) {
  return mIsOverruling && queryOverrule(object, overruleClass);
}

KrRxOverrule* KrRxOverruleInternals::queryOverrule(const KrRxObject* object, KrRxClass* overruleClass) {
  if (!object) return nullptr;
  const KrRxClass* listClass = desc();
  for (const KrRxImpClass* cls = object->isA()->impObj(); cls;) {
    auto* list = static_cast<const KrRxOverruleInternals*>(cls->lookupX(listClass));
    if (!list) return nullptr;
    if (KrRxOverrule* found = list->overrule(object, overruleClass)) return found;
    // The next list up is the one the owner of this class's table inherits.
    const KrRxClass* parent = cls->mpPeTable->owner->mpParent;
    cls = parent ? parent->impObj() : nullptr;
  }
  return nullptr;
}

int KrRxOverruleInternals::indexOf(const KrRxOverrule* overrule) const {
  for (int32_t i = 0; i < mpOverrules->count; ++i)
    if (mpOverrules->data[i] == overrule) return i;
  return -1;
}

Kesu::ErrorStatus KrRxOverruleInternals::addOverrule(KrRxOverrule* overrule, bool addAtLast) {
  if (indexOf(overrule) >= 0) return Kesu::eDuplicateKey;
  bool added = addAtLast ? mpOverrules->insertAt(0, overrule) : mpOverrules->append(overrule);
  return added ? Kesu::eOk : Kesu::eOutOfMemory;
}

Kesu::ErrorStatus KrRxOverruleInternals::removeOverrule(KrRxOverrule* overrule) {
  int32_t index = indexOf(overrule);
  if (index < 0) return Kesu::eKeyNotFound;
  mpOverrules->removeAt(index);
  return Kesu::eOk;
}

KrRxOverrule* KrRxOverruleInternals::overrule(const KrRxObject* object,
                                              const KrRxClass* overruleClass) const {
  for (int32_t i = mpOverrules->count - 1; i >= 0; --i) {
    KrRxOverrule* candidate = mpOverrules->data[i];
    if (candidate->isA()->isDerivedFrom(overruleClass) && candidate->isApplicable(object)) return candidate;
  }
  return nullptr;
}
