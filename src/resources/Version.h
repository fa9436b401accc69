// What the module says of itself. Plain macros, since the Windows resource compiler reads them too.
#pragma once

// Kept equal to the version of the project in CMakeLists.txt.
#define QUENRA_VERSION_MAJOR 1
#define QUENRA_VERSION_MINOR 0
#define QUENRA_VERSION_PATCH 0
#define QUENRA_VERSION_TEXT "1.0.0"

#define QUENRA_PRODUCT_NAME "Text File Data Source"
#define QUENRA_FILE_DESCRIPTION "Plain text files as typed tables"
#define QUENRA_MODULE_FILE_NAME "quenraDataSourcesFile.dll"
