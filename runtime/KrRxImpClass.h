#pragma once
// The implementation behind every class descriptor: identity, place in the
// class tree, class information and the protocol-extension tables.

#include <cstdint>

#include "krexport.h"
#include "krrxclass.h"
#include "runtime/KrRxGrowArray.h"

class KrRxGenHand;
class KrRxDictionary;
class KrRxProtocolReactorManager;

// Class information, made only when some of it is non-zero or non-null.
struct KrRxClassInfo {
  KrRxAppNameCallback appNameCallback;
  wchar_t* appName;
  wchar_t* dxfName;
  int32_t proxyFlags;
  int32_t version;
  int32_t maintenanceVersion;
};

// A class's protocol lookup table: entry i answers queryX for the protocol
// class in slot i. Shared with the parent until the class gets an
// attachment of its own.
struct KrRxProtocolTable {
  KrRxImpClass* owner;
  KrRxGrowArray<KrRxObject*> entries;
};

// A protocol object attached to a class, kept sorted by protocol class address.
struct KrRxProtocolExtension {
  const KrRxClass* protocolClass;
  KrRxObject* object;
};

class KR1ST_API KrRxImpClass {
 public:
  // A context-menu extension record.
  struct EditCMInfo {
    KrRxObject* object;
    void* data;
  };

  // Appends itself to the pending list; the module is the one current now.
  KrRxImpClass(KrRxClass* owner, const wchar_t* name, const wchar_t* parentName,
               KrRxPseudoConstructor pseudoConstructor, KrRxMemberBuilder memberBuilder,
               void* memberBuilderData);
  virtual ~KrRxImpClass();

  static KrRxClass* newClass(const wchar_t* name, const wchar_t* parentName, int version,
                             int maintenanceVersion, int proxyFlags,
                             KrRxPseudoConstructor pseudoConstructor, const wchar_t* dxfName,
                             const wchar_t* appName, KrRxAppNameCallback appNameCallback,
                             KrRxMemberBuilder memberBuilder, void* memberBuilderData);

  // Enters every pending descriptor into dictionary, then links them all.
  static void connectNewClasses(KrRxDictionary* dictionary);
  // Deletes now when cls belongs to the current module (queued until
  // clearDeletedClassesArray), else in its own module's context.
  static void deleteClass(KrRxClass* cls);
  // Disconnects and deletes the queued descriptors, descendants before parents.
  static void clearDeletedClassesArray();
  // Frees the process-wide lists once the system is down.
  static void releaseGlobalTables();

  // Links this descriptor to its parent; false while the parent is not linked yet.
  bool connect(KrRxDictionary* dictionary);
  // Unlinks it; false while it still has descendants.
  bool disconnect(KrRxDictionary* dictionary);
  bool addDescendant(KrRxClass* cls);
  bool removeDescendant(KrRxClass* cls);

  KrRxObject* addX(const KrRxClass* protocolClass, KrRxObject* object);
  KrRxObject* delX(const KrRxClass* protocolClass);
  // The table entry for protocolClass, or null.
  KrRxObject* lookupX(const KrRxClass* protocolClass) const;
  // This class's own attachment for protocolClass (not an inherited one), or null.
  KrRxObject* ownX(const KrRxClass* protocolClass) const;

  const KrRxClassInfo* info() const { return mpInfo; }
  // The application name under which the class's module registers it: the
  // information record's appName, else what its appNameCallback gives; or null.
  const wchar_t* logicalAppName() const;

  static KrRxGrowArray<KrRxImpClass*> newClasses;
  static KrRxGrowArray<KrRxImpClass*> deletedClasses;
  // Every class that has served as a protocol class holds one slot; slot 0 is never used.
  static KrRxGrowArray<const KrRxClass*> protocolClasses;

  KrRxClass* mpOwner;
  KrRxGenHand* mpModule;
  uint32_t mDictionaryId;
  wchar_t* mpName;
  wchar_t* mpParentName;
  KrRxClass* mpParent;
  KrRxSet* mpDescendants;
  KrRxPseudoConstructor mpPseudoConstructor;
  KrRxMemberBuilder mpMemberBuilder;
  void* mpMemberBuilderData;
  int32_t mProtocolIndex;
  KrRxProtocolTable* mpPeTable;
  KrRxGrowArray<KrRxProtocolExtension> mExtensions;
  KrRxGrowArray<EditCMInfo> mUiContexts;
  KrRxClassInfo* mpInfo;
  // The class's protocol reactors, made on first request and deleted with the descriptor.
  KrRxProtocolReactorManager* mpReactorManager;

 private:
  static KrRxImpClass* impOf(const KrRxClass* cls) { return cls->impObj(); }
  int32_t findExtension(const KrRxClass* protocolClass, bool& found) const;
  bool hasOwnExtension(const KrRxClass* protocolClass) const;
  static int32_t protocolSlotFor(const KrRxClass* protocolClass);
  KrRxObject* inheritedEntry(int32_t index) const;
  void makeOwnTable();
  void setEntry(int32_t index, KrRxObject* object);
  // Calls visit(descendant) for every descendant that inherits this class's
  // entry for protocolClass, allocating nothing.
  template <typename Visit>
  void forEachInheritor(const KrRxClass* protocolClass, Visit& visit) const;
  void reserveTables(const KrRxClass* protocolClass);
  void updateTables(const KrRxClass* protocolClass, KrRxObject* object);
  void takeOver(KrRxImpClass* replaced);
};
