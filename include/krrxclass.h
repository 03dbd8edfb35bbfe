#pragma once
/// @file
/// Run-time class descriptors: name, parent, pseudo-constructor, class
/// information and the protocol extensions attached to the class; and the
/// registration of classes into the class tree.

#include "krrxobject.h"

class KrRxImpClass;
class KrRxSet;
class KrRxDictionary;
class KrRxMemberCollectionBuilder;

/// Makes a new default instance of a class.
typedef KrRxObject* (*KrRxPseudoConstructor)();
/// Gives the application name under which a class is registered.
typedef void (*KrRxAppNameCallback)(const KrRxClass* cls, wchar_t*& name, int flags);
/// Lets reflection collect the members of a class.
typedef void (*KrRxMemberBuilder)(KrRxMemberCollectionBuilder& builder, void* data);

/// A class descriptor: name, parent, pseudo-constructor, protocol extensions and module of a runtime class.
class KR1ST_API KrRxClass : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRxClass);

 public:
  /// Creates the descriptor and its implementation; the new descriptor waits
  /// in the pending list until the next connection pass.
  KrRxClass(const wchar_t* name, const wchar_t* parentName, KrRxPseudoConstructor pseudoConstructor,
            KrRxMemberBuilder memberBuilder = nullptr, void* memberBuilderData = nullptr);
  ~KrRxClass() override;

  /// Case-sensitive, code-unit order of the names; kNotOrderable against a non-descriptor.
  KrRx::Ordering comparedTo(const KrRxObject* other) const override;

  /// What the class was registered with: name, parent, descendants, application and DXF names, callback, proxy flags and versions.
  ///@{
  const wchar_t* name() const;
  KrRxClass* myParent() const;
  KrRxSet* descendants() const;
  const wchar_t* appName() const;
  const wchar_t* dxfName() const;
  KrRxAppNameCallback appNameCallbackPtr() const;
  int proxyFlags() const;
  void getClassVersion(int& version, int& maintenanceVersion) const;
  ///@}

  /// A new default instance, or null for an abstract class.
  KrRxObject* create() const;

  /// True when the class (this, or cls) is other or derives from it; false for null.
  ///@{
  bool isDerivedFrom(const KrRxClass* other) const;
  static bool isDerivedFrom(const KrRxClass* cls, const KrRxClass* other);
  ///@}

  /// Attaches (or with null detaches) the protocol object for protocolClass on
  /// this very class; returns the object attached before, or null.
  KrRxObject* addX(const KrRxClass* protocolClass, KrRxObject* object);
  /// The protocol object (own or inherited); reports a fatal error when none.
  KrRxObject* getX(const KrRxClass* protocolClass) const;
  /// The protocol object (own or inherited), or null.
  KrRxObject* queryX(const KrRxClass* protocolClass) const;
  /// Detaches this class's own object for protocolClass and returns it.
  KrRxObject* delX(const KrRxClass* protocolClass);

  /// The runtime's own part of the descriptor.
  KrRxImpClass* impObj() const { return mpImp; }

 private:
  KrRxImpClass* mpImp;
};

/// Creates a descriptor with class information made only when some of it is
/// given (versions 0). The descriptor joins the tree at krrxBuildClassHierarchy.
///@{
KR1ST_API KrRxClass* newKrRxClass(const wchar_t* name, const wchar_t* parentName, int proxyFlags,
                                  KrRxPseudoConstructor pseudoConstructor, const wchar_t* dxfName,
                                  const wchar_t* appName);
KR1ST_API KrRxClass* newKrRxClass(const wchar_t* name, const wchar_t* parentName, int version,
                                  int maintenanceVersion, int proxyFlags,
                                  KrRxPseudoConstructor pseudoConstructor, const wchar_t* dxfName,
                                  const wchar_t* appName, KrRxAppNameCallback appNameCallback);
KR1ST_API KrRxClass* newKrRxClass(const wchar_t* name, const wchar_t* parentName, int version,
                                  int maintenanceVersion, int proxyFlags,
                                  KrRxPseudoConstructor pseudoConstructor, const wchar_t* dxfName,
                                  const wchar_t* appName, KrRxAppNameCallback appNameCallback,
                                  KrRxMemberBuilder memberBuilder, void* memberBuilderData);
///@}

/// Enters every pending descriptor into the class dictionary and links it to
/// its parent; does nothing while a module is being unloaded.
KR1ST_API void krrxBuildClassHierarchy();
/// Deletes a descriptor; only while its module is being unloaded.
KR1ST_API void deleteKrRxClass(KrRxClass* cls);
