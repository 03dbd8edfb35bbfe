#pragma once
// Start-up and shutdown of the value-type classes: the reflected values,
// the named value types on KrVtFloat64, the value arrays and the protocol
// extensions attached to them.

// Registers the classes, links them into the class tree and attaches the
// range check, the proxy interface and the formattables.
void krvtInitValueClasses();
// Detaches and deletes the extensions, then deletes the classes.
void krvtKillValueClasses();
