#pragma once
// The dictionary of services, as the system registry holds it.

class KrRxDictionary;

// The system registry's "ServiceDictionary" entry, or null when the system
// is not up (or is going down).
KrRxDictionary* krrxServiceDictionary();
