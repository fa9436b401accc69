/* A host in plain C: it knows the tables of functions alone, spelled out here as a host without
 * our headers would, so that a slot that moves breaks this test. */
#include "comhost/PlainCHost.h"

#include <initguid.h>
#include <oleauto.h>
#include <string.h>

DEFINE_GUID(kFactoryClass, 0xb2e7a59d, 0x0c38, 0x4ac3, 0xbe, 0x0b, 0xf1, 0x8e, 0xb4, 0x04, 0x09, 0xc5);
DEFINE_GUID(kFactoryHelper, 0x82417de7, 0x68a5, 0x474e, 0x8f, 0xee, 0xe8, 0xa9, 0x65, 0xfa, 0x03, 0x33);
DEFINE_GUID(kFastValues, 0xb869b4f7, 0xf64c, 0x41fb, 0xaa, 0xb2, 0x9e, 0x1f, 0x13, 0xed, 0x48, 0xf7);
DEFINE_GUID(kClassId, 0x47f6c44f, 0xcea7, 0x4b9b, 0x82, 0xd9, 0x84, 0xe7, 0x42, 0x62, 0x5c, 0x8a);
DEFINE_GUID(kRowCount, 0x59587400, 0x17d2, 0x4888, 0xb9, 0xa6, 0x15, 0x1c, 0x19, 0xb6, 0x65, 0xdc);

/* Every object begins with a pointer to its functions; the first argument is the object. */
typedef struct Object {
  struct Functions* functions;
} Object;

/* The slots by number: 0 to 2 are IUnknown's. */
typedef struct Functions {
  HRESULT(STDMETHODCALLTYPE* QueryInterface)(void*, const GUID*, void**);
  ULONG(STDMETHODCALLTYPE* AddRef)(void*);
  ULONG(STDMETHODCALLTYPE* Release)(void*);
  void* slots[16];
} Functions;

typedef HRESULT(STDMETHODCALLTYPE* OpenFolder)(void*, BSTR, Object**);            /* factory, 12 */
typedef HRESULT(STDMETHODCALLTYPE* OpenByName)(void*, BSTR, Object**);            /* workspace, 7 */
typedef HRESULT(STDMETHODCALLTYPE* FetchAll)(void*, LONG, BSTR, VARIANT, Object**); /* dataset, 11 */
typedef HRESULT(STDMETHODCALLTYPE* Advance)(void*);                               /* cursor, 3 */
typedef HRESULT(STDMETHODCALLTYPE* AtLast)(void*, VARIANT_BOOL*);                 /* cursor, 4 */
typedef HRESULT(STDMETHODCALLTYPE* ReadFast)(void*, FieldValue*);                 /* values, 3 */
typedef HRESULT(STDMETHODCALLTYPE* GetProgId)(void*, BSTR*);                      /* class id, 4 */
typedef HRESULT(STDMETHODCALLTYPE* CountRows)(void*, LONG, LONG*);                /* row count, 3 */

#define SLOT(object, number, type) ((type)(object)->functions->slots[(number) - 3])

static void Release(Object* object) {
  if (object != NULL) object->functions->Release(object);
}

static HRESULT OpenTable(Object* factory, const wchar_t* folder, const wchar_t* name,
                         Object** table) {
  Object* workspace = NULL;
  BSTR text = SysAllocString(folder);
  HRESULT result = SLOT(factory, 12, OpenFolder)(factory, text, &workspace);
  SysFreeString(text);
  if (FAILED(result)) return result;
  text = SysAllocString(name);
  result = SLOT(workspace, 7, OpenByName)(workspace, text, table);
  SysFreeString(text);
  Release(workspace);
  return result;
}

/* A cursor that puts the table's first two fields into the slots 0 and 1. */
static HRESULT OpenCursor(Object* table, Object** cursor) {
  VARIANT map;
  LONG i = 0;
  HRESULT result;
  VariantInit(&map);
  map.vt = VT_ARRAY | VT_I4;
  map.parray = SafeArrayCreateVector(VT_I4, 0, 2);
  for (i = 0; i < 2; ++i) SafeArrayPutElement(map.parray, &i, &i);
  result = SLOT(table, 11, FetchAll)(table, 0, NULL, map, cursor);
  VariantClear(&map);
  return result;
}

static HRESULT ReadRows(Object* cursor, PlainCResult* seen) {
  Object* values = NULL;
  VARIANT_BOOL finished = VARIANT_FALSE;
  HRESULT result = cursor->functions->QueryInterface(cursor, &kFastValues, (void**)&values);
  if (FAILED(result)) return result;
  for (;;) {
    result = SLOT(cursor, 4, AtLast)(cursor, &finished);
    if (FAILED(result) || finished != VARIANT_FALSE || seen->rows == PLAIN_C_ROWS) break;
    result = SLOT(values, 3, ReadFast)(values, seen->values[seen->rows++]);
    if (FAILED(result)) break;
    SLOT(cursor, 3, Advance)(cursor);
  }
  Release(values);
  return result;
}

static HRESULT Identify(Object* factory, PlainCResult* seen) {
  Object* identity = NULL;
  HRESULT result = factory->functions->QueryInterface(factory, &kClassId, (void**)&identity);
  if (FAILED(result)) return result;
  result = SLOT(identity, 4, GetProgId)(identity, &seen->progId);
  Release(identity);
  return result;
}

static HRESULT Count(Object* table, PlainCResult* seen) {
  Object* counter = NULL;
  HRESULT result = table->functions->QueryInterface(table, &kRowCount, (void**)&counter);
  if (FAILED(result)) return result;
  result = SLOT(counter, 3, CountRows)(counter, 0, &seen->count);
  Release(counter);
  return result;
}

HRESULT RunPlainCHost(const wchar_t* folder, const wchar_t* name, PlainCResult* seen) {
  Object* factory = NULL;
  Object* table = NULL;
  Object* cursor = NULL;
  HRESULT result;
  memset(seen, 0, sizeof *seen);
  result = CoCreateInstance(&kFactoryClass, NULL, CLSCTX_INPROC_SERVER, &kFactoryHelper,
                            (void**)&factory);
  if (SUCCEEDED(result)) result = Identify(factory, seen);
  if (SUCCEEDED(result)) result = OpenTable(factory, folder, name, &table);
  if (SUCCEEDED(result)) result = Count(table, seen);
  if (SUCCEEDED(result)) result = OpenCursor(table, &cursor);
  if (SUCCEEDED(result)) result = ReadRows(cursor, seen);
  Release(cursor);
  Release(table);
  Release(factory);
  return result;
}

void FreePlainCResult(PlainCResult* seen) {
  int row = 0;
  for (row = 0; row < PLAIN_C_ROWS; ++row) {
    VariantClear(&seen->values[row][0].value);
    VariantClear(&seen->values[row][1].value);
  }
  SysFreeString(seen->progId);
}
