// Class descriptors' implementation: creation, the pending list, connection
// into the class tree, replacement, deletion and the protocol tables.

#include "runtime/KrRxImpClass.h"

#include <cstddef>
#include <cwchar>
#include <new>

#include "krdiagnostics.h"
#include "krrxdictionary.h"
#include "krrxiterator.h"
#include "krrxset.h"
#include "runtime/KrRxClassAttachments.h"
#include "runtime/KrRxClassDictionary.h"
#include "runtime/KrRxCurrentModule.h"
#include "runtime/KrRxImpSet.h"

#pragma GCC diagnostic ignored "-Winvalid-offsetof"
static_assert(offsetof(KrRxImpClass, mpOwner) == 8, "owner follows the vtable pointer");
static_assert(offsetof(KrRxImpClass, mpModule) == 16 && offsetof(KrRxImpClass, mDictionaryId) == 24 &&
                  offsetof(KrRxImpClass, mpName) == 32 && offsetof(KrRxImpClass, mpParentName) == 40 &&
                  offsetof(KrRxImpClass, mpParent) == 48 && offsetof(KrRxImpClass, mpDescendants) == 56 &&
                  offsetof(KrRxImpClass, mpPseudoConstructor) == 64 &&
                  offsetof(KrRxImpClass, mpMemberBuilder) == 72 &&
                  offsetof(KrRxImpClass, mpMemberBuilderData) == 80 &&
                  offsetof(KrRxImpClass, mProtocolIndex) == 88 && offsetof(KrRxImpClass, mpPeTable) == 96 &&
                  offsetof(KrRxImpClass, mExtensions) == 104 && offsetof(KrRxImpClass, mUiContexts) == 128 &&
                  offsetof(KrRxImpClass, mpInfo) == 152 && offsetof(KrRxImpClass, mpReactorManager) == 160,
              "descriptor implementation fields in their fixed order");
// The inline protocol lookup reads these fields through its own views.
static_assert(offsetof(KrRxImpClass, mProtocolIndex) == offsetof(KrRxProtocolLookup::Implementation, protocolIndex) &&
                  offsetof(KrRxImpClass, mpPeTable) == offsetof(KrRxProtocolLookup::Implementation, peTable) &&
                  offsetof(KrRxProtocolTable, entries) + offsetof(KrRxGrowArray<KrRxObject*>, data) ==
                      offsetof(KrRxProtocolLookup::Table, entries) &&
                  offsetof(KrRxProtocolTable, entries) + offsetof(KrRxGrowArray<KrRxObject*>, count) ==
                      offsetof(KrRxProtocolLookup::Table, count),
              "the inline lookup's views match the class implementation and its table");

KrRxGrowArray<KrRxImpClass*> KrRxImpClass::newClasses;
KrRxGrowArray<KrRxImpClass*> KrRxImpClass::deletedClasses;
KrRxGrowArray<const KrRxClass*> KrRxImpClass::protocolClasses;

namespace {

// The all-zero information record shared by classes created without any.
KrRxClassInfo sEmptyInfo = {};

wchar_t* copyText(const wchar_t* text) { return text ? __krStrdup(text) : nullptr; }

// Calls visit(descendant) for each direct descendant of a class, allocating
// nothing (the descendant sets are the library's own).
template <typename Visit>
void forEachDescendant(const KrRxImpClass* imp, Visit visit) {
  if (!imp->mpDescendants) return;
  static_cast<const KrRxImpSet*>(imp->mpDescendants)->forEachMember([&](KrRxObject* child) {
    visit(static_cast<KrRxClass*>(child)->impObj());
    return true;
  });
}

}  // namespace

KrRxImpClass::KrRxImpClass(KrRxClass* owner, const wchar_t* name, const wchar_t* parentName,
                           KrRxPseudoConstructor pseudoConstructor, KrRxMemberBuilder memberBuilder,
                           void* memberBuilderData)
    : mpOwner(owner),
      mpModule(krrxCurrentModule),
      mDictionaryId(0),
      mpName(copyText(name)),
      mpParentName(copyText(parentName)),
      mpParent(nullptr),
      mpDescendants(nullptr),
      mpPseudoConstructor(pseudoConstructor),
      mpMemberBuilder(memberBuilder),
      mpMemberBuilderData(memberBuilderData),
      mProtocolIndex(0),
      mpPeTable(nullptr),
      mpInfo(&sEmptyInfo),
      mpReactorManager(nullptr) {
  // A class that cannot keep its names or join the pending list fails as a
  // whole, as its allocation would.
  if ((name && !mpName) || (parentName && !mpParentName) || !newClasses.append(this)) {
    __krFree(mpName);
    __krFree(mpParentName);
    throw std::bad_alloc();
  }
}

KrRxImpClass::~KrRxImpClass() {
  if (mpDescendants)
    krrx_abort(L"Attempt to delete class '%ls' which still has registered descendants.", mpName);
  for (int32_t i = 0; i < newClasses.count; ++i)
    if (newClasses.data[i] == this) newClasses.data[i] = nullptr;
  if (mProtocolIndex > 0) protocolClasses.data[mProtocolIndex] = nullptr;
  krrxReleaseClassAttachments(this);
  if (mpInfo != &sEmptyInfo) {
    __krFree(mpInfo->appName);
    __krFree(mpInfo->dxfName);
    __krFree(mpInfo);
  }
  if (mpPeTable && mpPeTable->owner == this) {
    mpPeTable->entries.release();
    __krFree(mpPeTable);
  }
  __krFree(mpName);
  __krFree(mpParentName);
  mUiContexts.release();
  mExtensions.release();
}

KrRxClass* KrRxImpClass::newClass(const wchar_t* name, const wchar_t* parentName, int version,
                                  int maintenanceVersion, int proxyFlags,
                                  KrRxPseudoConstructor pseudoConstructor, const wchar_t* dxfName,
                                  const wchar_t* appName, KrRxAppNameCallback appNameCallback,
                                  KrRxMemberBuilder memberBuilder, void* memberBuilderData) {
  KrRxClass* cls = new KrRxClass(name, parentName, pseudoConstructor, memberBuilder, memberBuilderData);
  if (version || maintenanceVersion || proxyFlags || dxfName || appName || appNameCallback) {
    auto* info = static_cast<KrRxClassInfo*>(__krMalloc(sizeof(KrRxClassInfo)));
    if (info) {
      *info = {appNameCallback, copyText(appName), copyText(dxfName), proxyFlags, version, maintenanceVersion};
      cls->impObj()->mpInfo = info;
    }
  }
  return cls;
}

// ---- Class tree ----

void KrRxImpClass::takeOver(KrRxImpClass* replaced) {
  mpDescendants = replaced->mpDescendants;
  replaced->mpDescendants = nullptr;
  forEachDescendant(this, [this](KrRxImpClass* child) { child->mpParent = mpOwner; });
  mpPeTable = replaced->mpPeTable;
  replaced->mpPeTable = nullptr;
  if (mpPeTable && mpPeTable->owner == replaced) mpPeTable->owner = this;
  replaced->mDictionaryId = 0;
  // The replaced descriptor leaves its parent so that this one can take its place.
  if (replaced->mpParent) {
    impOf(replaced->mpParent)->removeDescendant(replaced->mpOwner);
    replaced->mpParent = nullptr;
  }
}

void KrRxImpClass::connectNewClasses(KrRxDictionary* dictionary) {
  for (int32_t i = 0; i < newClasses.count; ++i) {
    KrRxImpClass* imp = newClasses.data[i];
    if (!imp) continue;
    KrRxObject* replaced = dictionary->atPut(imp->mpName, imp->mpOwner, imp->mDictionaryId);
    // A failed key copy leaves the class out of the dictionary: it stays
    // pending, before any class is linked that might name it as parent.
    if (!dictionary->has(imp->mDictionaryId)) {
      imp->mDictionaryId = 0;
      throw std::bad_alloc();
    }
    if (replaced && replaced != imp->mpOwner) imp->takeOver(static_cast<KrRxClass*>(replaced)->impObj());
  }
  bool deferred;
  do {
    deferred = false;
    for (int32_t i = 0; i < newClasses.count; ++i) {
      KrRxImpClass* imp = newClasses.data[i];
      if (!imp || !imp->mDictionaryId) continue;
      if (imp->connect(dictionary))
        newClasses.data[i] = nullptr;
      else
        deferred = true;
    }
  } while (deferred);
  newClasses.count = 0;
}

bool KrRxImpClass::connect(KrRxDictionary* dictionary) {
  if (mpParentName) {
    KrRxClass* parent = static_cast<KrRxClass*>(dictionary->at(mpParentName));
    if (!parent) krrx_abort(L"Class '%ls' parent named '%ls' not found.", mpName, mpParentName);
    KrRxImpClass* parentImp = parent->impObj();
    if (!parentImp->mpPeTable) return false;
    // A descriptor that took over a replaced one's table keeps it, and with
    // it everything its subtree inherits. The tables are made ready before
    // the class is linked: when memory is short it stays unlinked.
    if (!mpPeTable) mpPeTable = parentImp->mpPeTable;
    for (int32_t i = 0; i < mExtensions.count; ++i) reserveTables(mExtensions.data[i].protocolClass);
    if (!parentImp->addDescendant(mpOwner))
      krrx_abort(L"Class '%ls' already contains a descendant called '%ls'.", parentImp->mpName, mpName);
    mpParent = parent;
    for (int32_t i = 0; i < mExtensions.count; ++i)
      updateTables(mExtensions.data[i].protocolClass, mExtensions.data[i].object);
  } else if (!mpPeTable) {
    mpPeTable = static_cast<KrRxProtocolTable*>(__krMalloc(sizeof(KrRxProtocolTable)));
    if (!mpPeTable) throw std::bad_alloc();
    *mpPeTable = {this, {}};
  }
  if (const wchar_t* appName = mpModule ? logicalAppName() : nullptr) krrxAddModuleAppName(mpModule, appName);
  return true;
}

bool KrRxImpClass::disconnect(KrRxDictionary* dictionary) {
  if (mpDescendants) return false;
  if (mpParent) {
    KrRxImpClass* parentImp = mpParent->impObj();
    if (!parentImp->removeDescendant(mpOwner))
      krrx_abort(L"Class '%ls' does not contain a descendant called '%ls'.", parentImp->mpName, mpName);
    mpParent = nullptr;
  }
  if (mDictionaryId) {
    dictionary->remove(mDictionaryId);
    mDictionaryId = 0;
  }
  if (const wchar_t* appName = mpModule ? logicalAppName() : nullptr) krrxRemoveModuleAppName(mpModule, appName);
  return true;
}

const wchar_t* KrRxImpClass::logicalAppName() const {
  if (mpInfo->appName) return mpInfo->appName;
  wchar_t* name = nullptr;
  if (mpInfo->appNameCallback) mpInfo->appNameCallback(mpOwner, name, 0);
  return name;
}

bool KrRxImpClass::addDescendant(KrRxClass* cls) {
  if (!mpDescendants) mpDescendants = new KrRxImpSet(false);
  try {
    return mpDescendants->add(cls);
  } catch (const std::bad_alloc&) {
    // No empty set stays behind: it would mark this class as having descendants.
    if (mpDescendants->numEntries() == 0) {
      delete mpDescendants;
      mpDescendants = nullptr;
    }
    throw;
  }
}

bool KrRxImpClass::removeDescendant(KrRxClass* cls) {
  if (!mpDescendants || !mpDescendants->remove(cls)) return false;
  if (mpDescendants->numEntries() == 0) {
    delete mpDescendants;
    mpDescendants = nullptr;
  }
  return true;
}

// ---- Deletion ----

namespace {

// Runs inside the owning module's context, where the descriptor is queued.
void deleteInOwnContext(void* cls) { KrRxImpClass::deleteClass(static_cast<KrRxClass*>(cls)); }

}  // namespace

void KrRxImpClass::deleteClass(KrRxClass* cls) {
  KrRxImpClass* imp = cls->impObj();
  if (imp->mpModule == krrxCurrentModule) {
    for (int32_t i = 0; i < deletedClasses.count; ++i)
      if (deletedClasses.data[i] == imp) return;
    deletedClasses.append(imp);
    return;
  }
  krrxRunInModuleContext(imp->mpModule, deleteInOwnContext, cls);
}

void KrRxImpClass::clearDeletedClassesArray() {
  KrRxDictionary* dictionary = sysClasses;
  bool progress = true;
  while (progress) {
    progress = false;
    for (int32_t i = 0; i < deletedClasses.count; ++i) {
      KrRxImpClass* imp = deletedClasses.data[i];
      if (!imp || !imp->disconnect(dictionary)) continue;
      deletedClasses.data[i] = nullptr;
      delete imp->mpOwner;
      progress = true;
    }
  }
  int32_t kept = 0;
  for (int32_t i = 0; i < deletedClasses.count; ++i)
    if (deletedClasses.data[i]) deletedClasses.data[kept++] = deletedClasses.data[i];
  deletedClasses.count = kept;
}

void KrRxImpClass::releaseGlobalTables() {
  newClasses.release();
  deletedClasses.release();
  protocolClasses.release();
}

// ---- Protocol extensions ----

int32_t KrRxImpClass::findExtension(const KrRxClass* protocolClass, bool& found) const {
  int32_t low = 0, high = mExtensions.count;
  while (low < high) {
    int32_t middle = (low + high) / 2;
    if (mExtensions.data[middle].protocolClass < protocolClass)
      low = middle + 1;
    else
      high = middle;
  }
  found = low < mExtensions.count && mExtensions.data[low].protocolClass == protocolClass;
  return low;
}

bool KrRxImpClass::hasOwnExtension(const KrRxClass* protocolClass) const {
  bool found;
  findExtension(protocolClass, found);
  return found;
}

int32_t KrRxImpClass::protocolSlotFor(const KrRxClass* protocolClass) {
  KrRxImpClass* protocol = impOf(protocolClass);
  if (protocol->mProtocolIndex) return protocol->mProtocolIndex;
  // A slot that could not be had is not remembered: the next call tries again.
  if (protocolClasses.count == 0 && !protocolClasses.append(nullptr)) return -1;
  for (int32_t slot = 1; slot < protocolClasses.count; ++slot) {
    if (!protocolClasses.data[slot]) {
      protocolClasses.data[slot] = protocolClass;
      return protocol->mProtocolIndex = slot;
    }
  }
  if (!protocolClasses.append(protocolClass)) return -1;
  return protocol->mProtocolIndex = protocolClasses.count - 1;
}

KrRxObject* KrRxImpClass::inheritedEntry(int32_t index) const {
  if (!mpParent) return nullptr;
  const KrRxProtocolTable* table = impOf(mpParent)->mpPeTable;
  return table && index < table->entries.count ? table->entries.data[index] : nullptr;
}

// Gives this class a private copy of the table it shares, and moves every
// descendant that shared the same table onto the copy.
void KrRxImpClass::makeOwnTable() {
  KrRxProtocolTable* shared = mpPeTable;
  auto* own = static_cast<KrRxProtocolTable*>(__krMalloc(sizeof(KrRxProtocolTable)));
  if (!own) throw std::bad_alloc();
  *own = {this, {}};
  if (!own->entries.reserve(shared->entries.count)) {
    __krFree(own);
    throw std::bad_alloc();
  }
  if (shared->entries.count)
    memcpy(own->entries.data, shared->entries.data, shared->entries.count * sizeof(KrRxObject*));
  own->entries.count = shared->entries.count;
  mpPeTable = own;
  struct Repoint {
    static void run(KrRxImpClass* imp, KrRxProtocolTable* from, KrRxProtocolTable* to) {
      forEachDescendant(imp, [from, to](KrRxImpClass* child) {
        if (child->mpPeTable != from) return;
        child->mpPeTable = to;
        run(child, from, to);
      });
    }
  };
  Repoint::run(this, shared, own);
}

// reserveTables has made the room for index.
void KrRxImpClass::setEntry(int32_t index, KrRxObject* object) {
  KrRxGrowArray<KrRxObject*>& entries = mpPeTable->entries;
  if (index >= entries.count) {
    memset(entries.data + entries.count, 0, (index + 1 - entries.count) * sizeof(KrRxObject*));
    entries.count = index + 1;
  }
  entries.data[index] = object;
}

// The subtrees of classes with an own extension for protocolClass are left out.
template <typename Visit>
void KrRxImpClass::forEachInheritor(const KrRxClass* protocolClass, Visit& visit) const {
  forEachDescendant(this, [&](KrRxImpClass* child) {
    if (child->hasOwnExtension(protocolClass)) return;
    visit(child);
    child->forEachInheritor(protocolClass, visit);
  });
}

// Makes every table that updateTables writes for protocolClass able to hold
// its slot: this class's own (made first when it shares one) and those of
// the inheritors that own theirs. Throws std::bad_alloc; what was made
// stays, and still holds the right entries.
void KrRxImpClass::reserveTables(const KrRxClass* protocolClass) {
  if (!mpPeTable) return;
  const int32_t index = impOf(protocolClass)->mProtocolIndex;
  if (mpPeTable->owner != this) makeOwnTable();
  auto reserve = [index](KrRxImpClass* imp) {
    if (imp->mpPeTable && imp->mpPeTable->owner == imp && !imp->mpPeTable->entries.reserve(index + 1))
      throw std::bad_alloc();
  };
  reserve(this);
  forEachInheritor(protocolClass, reserve);
}

// Sets this class's entry for protocolClass to object and carries it down to
// every descendant without an attachment of its own. reserveTables comes
// first, so that nothing here can fail.
void KrRxImpClass::updateTables(const KrRxClass* protocolClass, KrRxObject* object) {
  if (!mpPeTable) return;
  const int32_t index = impOf(protocolClass)->mProtocolIndex;
  auto set = [index, object](KrRxImpClass* imp) {
    if (imp->mpPeTable && imp->mpPeTable->owner == imp) imp->setEntry(index, object);
  };
  set(this);
  forEachInheritor(protocolClass, set);
}

KrRxObject* KrRxImpClass::addX(const KrRxClass* protocolClass, KrRxObject* object) {
  if (!impOf(protocolClass)->mProtocolIndex && !object) return nullptr;
  if (protocolSlotFor(protocolClass) < 0) throw std::bad_alloc();
  bool found;
  int32_t position = findExtension(protocolClass, found);
  // Everything that can fail comes before the first change.
  if (!found && object && !mExtensions.reserve(mExtensions.count + 1)) throw std::bad_alloc();
  reserveTables(protocolClass);
  KrRxObject* previous = nullptr;
  if (found) {
    previous = mExtensions.data[position].object;
    if (object)
      mExtensions.data[position].object = object;
    else
      mExtensions.removeAt(position);
  } else if (object) {
    mExtensions.insertAt(position, {protocolClass, object});
  }
  updateTables(protocolClass, object ? object : inheritedEntry(impOf(protocolClass)->mProtocolIndex));
  return previous;
}

KrRxObject* KrRxImpClass::delX(const KrRxClass* protocolClass) {
  int32_t index = impOf(protocolClass)->mProtocolIndex;
  if (index <= 0) return nullptr;
  bool found;
  int32_t position = findExtension(protocolClass, found);
  if (!found) return nullptr;
  reserveTables(protocolClass);
  KrRxObject* previous = mExtensions.data[position].object;
  mExtensions.removeAt(position);
  updateTables(protocolClass, inheritedEntry(index));
  return previous;
}

KrRxObject* KrRxImpClass::ownX(const KrRxClass* protocolClass) const {
  bool found;
  int32_t position = findExtension(protocolClass, found);
  return found ? mExtensions.data[position].object : nullptr;
}

KrRxObject* KrRxImpClass::lookupX(const KrRxClass* protocolClass) const {
  int32_t index = impOf(protocolClass)->mProtocolIndex;
  const KrRxProtocolTable* table = mpPeTable;
  return table && index > 0 && index < table->entries.count ? table->entries.data[index] : nullptr;
}
