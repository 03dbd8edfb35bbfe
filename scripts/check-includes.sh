#!/bin/sh
# Fails when a file of foundation/ or runtime/ includes a header of a folder
# built on top of it. Floors, lowest first: foundation, runtime, then the
# rest. A public header counts as part of its family's folder (table below);
# a public header missing from the table fails the check too, so that every
# new header is given a floor.
cd "$(dirname "$0")/.."
awk '
  FNR == NR { if ($0 !~ /^#/ && NF == 2) floor[$1] = $2; next }
  FNR == 1 { own = FILENAME; sub(/\/.*/, "", own) }
  /^[ \t]*#[ \t]*include[ \t]*"/ {
    header = $0; sub(/^[^"]*"/, "", header); sub(/".*/, "", header)
    if (header ~ /\//) { folder = header; sub(/\/.*/, "", folder) }
    else if (header in floor) folder = floor[header]
    else { printf "%s:%d: %s has no floor in scripts/check-includes.sh\n", FILENAME, FNR, header; bad++; next }
    if (folder != "foundation" && !(own == "runtime" && folder == "runtime")) {
      printf "%s:%d: includes %s (%s/)\n", FILENAME, FNR, header, folder; bad++
    }
  }
  END {
    if (bad) { printf "%d include(s) run up from foundation/ or runtime/\n", bad; exit 1 }
    print "foundation/ and runtime/ include nothing from the folders above them"
  }' - foundation/*.cpp foundation/*.h runtime/*.cpp runtime/*.h <<'TABLE'
# public header         folder of its family
kr1st.h                 host
krdiagnostics.h         foundation
krerrorstatus.h         foundation
krexport.h              foundation
krheap.h                foundation
krhostservices.h        foundation
krstring.h              foundation
kruniquestring.h        foundation
krrxclass.h             runtime
krrxcopyonwrite.h       runtime
krrxdictionary.h        runtime
krrxgenvoid.h           runtime
krrxiterator.h          runtime
krrxlinkedlist.h        runtime
krrxmodulemessages.h    runtime
krrxobject.h            runtime
krrxprotocollookup.h    runtime
krrxset.h               runtime
krrxtextstring.h        runtime
krrxformatcontext.h     values
krrxformattable.h       values
krvtcurrency.h          values
krvtdaytime.h           values
krvtratio.h             values
krrxservice.h           system
krrxsystem.h            system
krrxevent.h             extensions
krrxoverrule.h          extensions
krrxprotocolreactor.h   extensions
kesuappregistry.h       modules
krrxdynamiclinker.h     modules
krrxgenhand.h           modules
krrfarray.h             reflection
krrfformat.h            reflection
krrfnames.h             reflection
krrfpropertyextensions.h reflection
krrfprotocolreactors.h  reflection
krrfreflection.h        reflection
krrfproxy.h             reflection
krrfrangecheck.h        reflection
krrfsymbol.h            reflection
krrfvalue.h             reflection
TABLE
