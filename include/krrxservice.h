#pragma once
/// @file
/// Named services that modules publish for one another, with dependency
/// counting, and the kernel: the service that makes dictionaries and sets.

#include "krrxmodulemessages.h"
#include "krrxobject.h"

class KrRxDictionary;
class KrRxSet;
struct KrRxServiceData;

/// A named service in the service dictionary, with its owner module and dependants counted.
class KR1ST_API KrRxService : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRxService);

 public:
  /// The owning module is the module current at construction.
  KrRxService();
  ~KrRxService() override;

  /// The owning module's handle (a KrRxGenHand), or whatever was set.
  ///@{
  KrRxObject* getSysInfo() const;
  void setSysInfo(KrRxObject* sysInfo);
  ///@}

  /// Counts a dependant; the owning module hears message 10 when the first
  /// arrives. Throws std::overflow_error when the counter is full.
  void addDependency();
  /// Drops a dependant; the owning module hears message 11 when the last
  /// leaves. Throws std::underflow_error when there is none.
  void removeDependency();
  /// True exactly when nothing depends on the service.
  bool unloadable() const;

  /// The function told about the first and the last dependant instead of the owning module's entry point, or null.
  ///@{
  KrRxAppEntryPoint dependencyFunctionPtr() const;
  void setDependencyFunctionPtr(KrRxAppEntryPoint fn);
  ///@}

 private:
  KrRxServiceData* mpData;
};

/// The factory of dictionaries and sets, registered as "KernelServices".
/// Every object it returns belongs to the caller.
class KR1ST_API KrRxKernel : public KrRxService {
  KRRX_DECLARE_MEMBERS(KrRxKernel);

 public:
  /// Unsorted, case-sensitive, not owning, accepting only kinds of requiredClass.
  virtual KrRxDictionary* newKrRxDictionary(const KrRxClass* requiredClass) = 0;
  /// A dictionary with room for length entries, owning its objects or not, sorted or not, ignoring case or not.
  virtual KrRxDictionary* newKrRxDictionary(unsigned int length, bool deleteObjects, bool sorted,
                                            bool ignoreCase) = 0;
  /// A dictionary that does not own its objects, sorted or not, ignoring case or not.
  virtual KrRxDictionary* newKrRxDictionary(bool sorted, bool ignoreCase) = 0;
  /// A set that accepts only kinds of requiredClass.
  virtual KrRxSet* newKrRxSet(bool deleteObjects, const KrRxClass* requiredClass) = 0;
  /// A set owning its members or not (by default not), that accepts any object.
  ///@{
  virtual KrRxSet* newKrRxSet(bool deleteObjects) = 0;
  virtual KrRxSet* newKrRxSet() = 0;
  ///@}
};

/// Registers a plain service under name through the dynamic linker; null
/// when there is no linker.
KR1ST_API KrRxObject* krrxRegisterService(const wchar_t* name);
/// Whether a service of that name is in the service dictionary.
KR1ST_API bool krrxServiceIsRegistered(const wchar_t* name);
/// The address of symbolName exported by the module that registered serviceName.
KR1ST_API void* krrxGetServiceSymbolAddr(wchar_t* serviceName, char* symbolName);
