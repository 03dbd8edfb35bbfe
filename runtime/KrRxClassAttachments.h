#pragma once
// State that a higher floor attaches to a class descriptor (a protocol-reactor
// manager, an overrule list). The runtime holds it without knowing its kind;
// the floor that attaches it installs a release, which runs when the class
// descriptor is destroyed.
//
//   void releaseMine(KrRxImpClass* cls) { delete cls->mpReactorManager; }
//   [[maybe_unused]] const bool installed = krrxAddClassAttachmentRelease(releaseMine);

class KrRxImpClass;

using KrRxClassAttachmentRelease = void (*)(KrRxImpClass* cls);

// Installs a release; returns true. Aborts beyond the few the library has.
bool krrxAddClassAttachmentRelease(KrRxClassAttachmentRelease release);
// Runs every installed release on cls.
void krrxReleaseClassAttachments(KrRxImpClass* cls);
