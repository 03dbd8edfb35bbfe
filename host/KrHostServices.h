#pragma once
// krhost's host services: the runtime writes its messages (a refused module,
// a failed load) and asks for the product key through the host's database
// library, "KRDB20.DLL". krhost brings its own (KrHostServicesLibrary.cpp),
// loaded from the krhost-services folder beside krhost.exe.
//
//   KrHostServices& host = KrHostServices::instance();   // loads it once
//   krrxLoadModule(L"shapes", true, true);
//   std::vector<std::wstring> said = host.takeMessages();

#include <string>
#include <vector>

// Receives each runtime message: length characters, not necessarily terminated.
typedef void (*KrHostMessageSink)(const wchar_t* text, int length, void* context);

class KrHostServices {
 public:
  // The one instance; its library is loaded on first use.
  static KrHostServices& instance();

  // False when krhost-services\KRDB20.DLL could not be loaded: then the
  // runtime's messages are dropped.
  bool available() const { return mLibrary != nullptr; }
  // The product key the runtime is told (none when empty).
  void setProductKey(const std::wstring& key);
  // The messages written since the last call, one entry per message.
  std::vector<std::wstring> takeMessages();

 private:
  KrHostServices();
  static void collect(const wchar_t* text, int length, void* context);

  void* mLibrary = nullptr;
  std::vector<std::wstring> mMessages;
};
