#pragma once
/// @file
/// The services that the host's database library ("KRDB20.DLL") offers the
/// runtime. The runtime never loads that library: when it is already loaded
/// and exports krdbHostApplicationServices(), the runtime asks it for the
/// product key and locale, the start-up list file's base name, message output,
/// crash reports and fatal errors. A host implements this interface.

struct _EXCEPTION_POINTERS;

/// The interface a host's database library implements for the runtime.
class KrDbHostApplicationServices {
 public:
  /// Registry key of the product below HKCU/HKLM, e.g. L"Software\\Vendor\\Product".
  virtual const wchar_t* productKey() const = 0;
  /// Locale identifier of the product's language.
  virtual unsigned int productLcid() const = 0;
  /// Base name of the start-up list file (".rx" is appended); null for the default.
  virtual const wchar_t* listFileBaseName() const = 0;
  /// Shows a runtime message of length characters (not necessarily terminated).
  virtual void writeMessage(const wchar_t* text, int length) = 0;
  /// Records a crash of the process before it ends.
  virtual void reportCrash(_EXCEPTION_POINTERS* exception, const wchar_t* applicationName) = 0;
  /// Reports an unrecoverable error chosen by the user.
  virtual void fatalError(const wchar_t* message) = 0;

 protected:
  ~KrDbHostApplicationServices() = default;
};

/// Exported by the host's database library (C++ linkage).
KrDbHostApplicationServices* krdbHostApplicationServices();
