// Class descriptors: the public face of KrRxImpClass, and class registration.

#include "krrxclass.h"

#include <cwchar>

#include "krdiagnostics.h"
#include "krrxdictionary.h"
#include "runtime/KrRxClassDictionary.h"
#include "runtime/KrRxCoreClass.h"
#include "runtime/KrRxCurrentModule.h"
#include "runtime/KrRxImpClass.h"

static_assert(sizeof(KrRxClass) == 2 * sizeof(void*), "a descriptor holds only its implementation pointer");

KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRxClass, KrRxObject)

KrRxClass* krrxInitCoreClass(KrRxClass* current, const wchar_t* name, const wchar_t* parentName,
                             KrRxPseudoConstructor pseudoConstructor) {
  if (current) {
    KrRxObject* entered = sysClasses ? sysClasses->at(name) : nullptr;
    if (entered == current) return current;
    if (entered) krrx_abort(L"Class mismatch");
  }
  return new KrRxClass(name, parentName, pseudoConstructor);
}

KrRxClass::KrRxClass(const wchar_t* name, const wchar_t* parentName, KrRxPseudoConstructor pseudoConstructor,
                     KrRxMemberBuilder memberBuilder, void* memberBuilderData)
    : mpImp(new KrRxImpClass(this, name, parentName, pseudoConstructor, memberBuilder, memberBuilderData)) {}

KrRxClass::~KrRxClass() { delete mpImp; }

KrRx::Ordering KrRxClass::comparedTo(const KrRxObject* other) const {
  const KrRxClass* otherClass = KrRxClass::cast(other);
  if (!otherClass) return KrRx::kNotOrderable;
  const wchar_t* a = name() ? name() : L"";
  const wchar_t* b = otherClass->name() ? otherClass->name() : L"";
  for (;; ++a, ++b) {
    if (*a != *b) return static_cast<unsigned>(*a) < static_cast<unsigned>(*b) ? KrRx::kLessThan : KrRx::kGreaterThan;
    if (!*a) return KrRx::kEqual;
  }
}

const wchar_t* KrRxClass::name() const { return mpImp->mpName; }
KrRxClass* KrRxClass::myParent() const { return mpImp->mpParent; }
KrRxSet* KrRxClass::descendants() const { return mpImp->mpDescendants; }
const wchar_t* KrRxClass::appName() const { return mpImp->info()->appName; }
const wchar_t* KrRxClass::dxfName() const { return mpImp->info()->dxfName; }
KrRxAppNameCallback KrRxClass::appNameCallbackPtr() const { return mpImp->info()->appNameCallback; }
int KrRxClass::proxyFlags() const { return mpImp->info()->proxyFlags; }

void KrRxClass::getClassVersion(int& version, int& maintenanceVersion) const {
  version = mpImp->info()->version;
  maintenanceVersion = mpImp->info()->maintenanceVersion;
}

KrRxObject* KrRxClass::create() const { return mpImp->mpPseudoConstructor ? mpImp->mpPseudoConstructor() : nullptr; }

bool KrRxClass::isDerivedFrom(const KrRxClass* other) const { return isDerivedFrom(this, other); }

bool KrRxClass::isDerivedFrom(const KrRxClass* cls, const KrRxClass* other) {
  for (; cls; cls = cls->mpImp->mpParent)
    if (cls == other) return true;
  return false;
}

namespace {

// The checks shared by addX and delX; their texts name addX in both cases.
bool validProtocolCall(const KrRxClass* cls, const KrRxClass* protocolClass) {
  if (!cls) krrx_abort(L"KrRxClass::addX() called on a nullptr instance.\n");
  if (!protocolClass) krrx_abort(L"KrRxClass::addX() called on '%ls' using nullptr class.\n", cls->name());
  return true;
}

}  // namespace

KrRxObject* KrRxClass::addX(const KrRxClass* protocolClass, KrRxObject* object) {
  validProtocolCall(this, protocolClass);
  if (object && !object->isA()->isDerivedFrom(protocolClass)) {
    const wchar_t* protocolName = protocolClass->name();
    krrx_abort(L"KrRxClass::addX() called on '%ls' using a protocol object that is not a kind of '%ls'.\n"
               L"'%ls::cast()' will not work on this protocol.\n\n"
               L"Solution: Your protocol object KrRxClass should inherit from '%ls' in order to use it here as "
               L"protocol extension object.\n",
               name(), protocolName, protocolName, protocolName);
  }
  return mpImp->addX(protocolClass, object);
}

KrRxObject* KrRxClass::delX(const KrRxClass* protocolClass) {
  validProtocolCall(this, protocolClass);
  return mpImp->delX(protocolClass);
}

KrRxObject* KrRxClass::getX(const KrRxClass* protocolClass) const {
  KrRxObject* object = mpImp->lookupX(protocolClass);
  if (!object) krrx_abort(L"KrRxClass::getX() failed!!");
  return object;
}

KrRxObject* KrRxClass::queryX(const KrRxClass* protocolClass) const {
  return protocolClass ? mpImp->lookupX(protocolClass) : nullptr;
}

// ---- Registration ----

KrRxClass* newKrRxClass(const wchar_t* name, const wchar_t* parentName, int proxyFlags,
                        KrRxPseudoConstructor pseudoConstructor, const wchar_t* dxfName, const wchar_t* appName) {
  return KrRxImpClass::newClass(name, parentName, 0, 0, proxyFlags, pseudoConstructor, dxfName, appName, nullptr,
                                nullptr, nullptr);
}

KrRxClass* newKrRxClass(const wchar_t* name, const wchar_t* parentName, int version, int maintenanceVersion,
                        int proxyFlags, KrRxPseudoConstructor pseudoConstructor, const wchar_t* dxfName,
                        const wchar_t* appName, KrRxAppNameCallback appNameCallback) {
  return KrRxImpClass::newClass(name, parentName, version, maintenanceVersion, proxyFlags, pseudoConstructor,
                                dxfName, appName, appNameCallback, nullptr, nullptr);
}

KrRxClass* newKrRxClass(const wchar_t* name, const wchar_t* parentName, int version, int maintenanceVersion,
                        int proxyFlags, KrRxPseudoConstructor pseudoConstructor, const wchar_t* dxfName,
                        const wchar_t* appName, KrRxAppNameCallback appNameCallback,
                        KrRxMemberBuilder memberBuilder, void* memberBuilderData) {
  return KrRxImpClass::newClass(name, parentName, version, maintenanceVersion, proxyFlags, pseudoConstructor,
                                dxfName, appName, appNameCallback, memberBuilder, memberBuilderData);
}

void krrxBuildClassHierarchy() {
  if (krrxCurrentMessage == KrRx::kAppMsgUnload) return;
  if (sysClasses) KrRxImpClass::connectNewClasses(sysClasses);
}

void deleteKrRxClass(KrRxClass* cls) {
  if (!cls || krrxCurrentMessage != KrRx::kAppMsgUnload) return;
  KrRxImpClass::deleteClass(cls);
}
