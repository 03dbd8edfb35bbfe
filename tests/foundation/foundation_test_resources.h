// String resources of the foundation test executable.
#define IDS_FIRST_TEXT 101
#define IDS_SECOND_TEXT 102
#define IDS_MISSING_TEXT 199
