/* Prints a table:
 *
 *   plain_c_host FOLDER TABLE [MODULE]
 */
#include <stdio.h>
#include <stdlib.h>

#include "PlainCHost.h"

#ifdef _WIN32

#define ARGUMENT_CODE_PAGE CP_ACP

/* The host library lies beside the module. Windows looks there for a full path with backslashes. */
static HMODULE LoadDataSource(OLECHAR* path) {
  OLECHAR* unit = path;
  for (; *unit != 0; ++unit)
    if (*unit == L'/') *unit = L'\\';
  return LoadLibraryExW(path, NULL, LOAD_WITH_ALTERED_SEARCH_PATH);
}

#else

#define ARGUMENT_CODE_PAGE CP_UTF8

static HMODULE LoadDataSource(OLECHAR* path) { return LoadLibraryW(path); }

#endif

enum { kPathUnits = 4096 };

static void PrintText(BSTR text) {
  const int units = (int)SysStringLen(text);
  char* const bytes = malloc((size_t)units * 3 + 1);
  if (bytes == NULL) return;
  fwrite(bytes, 1,
         (size_t)(units == 0
                      ? 0
                      : WideCharToMultiByte(CP_UTF8, 0, text, units, bytes, units * 3, NULL, NULL)),
         stdout);
  free(bytes);
}

static void PrintRow(const FieldValue* values, LONG count, void* context) {
  LONG i = 0;
  (void)context;
  for (i = 0; i < count; ++i) {
    const VARIANT* const value = &values[i].value;
    if (i > 0) printf("|");
    if (value->vt == VT_I2) printf("%d", (int)value->iVal);
    if (value->vt == VT_I4) printf("%d", (int)value->lVal);
    if (value->vt == VT_R8) printf("%g", value->dblVal);
    if (value->vt == VT_DATE) printf("%g", value->date);
    if (value->vt == VT_BSTR) PrintText(value->bstrVal);
  }
  printf("\n");
}

static int Run(HMODULE module, const OLECHAR* folder, const OLECHAR* name) {
  Object* factory = NULL;
  LONG count = 0;
  HRESULT result = NewFactory(module, &factory);
  if (SUCCEEDED(result)) result = ReadTable(factory, folder, name, PrintRow, NULL, &count);
  ReleaseObject(factory);
  if (FAILED(result)) {
    fprintf(stderr, "plain_c_host: 0x%08X\n", (unsigned)result);
    return 1;
  }
  printf("%d rows\n", (int)count);
  return 0;
}

/* Whether the module could go: nothing of it is held any more. */
static int Unload(HMODULE module) {
  typedef void (*Function)(void);
  typedef HRESULT(STDMETHODCALLTYPE * CanUnloadNow)(void);
  const CanUnloadNow canUnloadNow =
      (CanUnloadNow)(Function)GetProcAddress(module, "DllCanUnloadNow");
  SetErrorInfo(0, NULL);
  return canUnloadNow != NULL && canUnloadNow() == S_OK && FreeLibrary(module);
}

int main(int count, char** arguments) {
  static OLECHAR paths[3][kPathUnits];
  const char* texts[3];
  HMODULE module = NULL;
  int i = 0;
  int status = 0;
  if (count < 3) return 1;
  texts[0] = arguments[1];
  texts[1] = arguments[2];
  texts[2] = count > 3 ? arguments[3] : MODULE_FILE;
  for (i = 0; i < 3; ++i)
    if (MultiByteToWideChar(ARGUMENT_CODE_PAGE, 0, texts[i], -1, paths[i], kPathUnits) == 0)
      return 1;
  module = LoadDataSource(paths[2]);
  if (module == NULL) return 1;
  status = Run(module, paths[0], paths[1]);
  if (!Unload(module)) return 1;
  return status;
}
