/* A host in plain C knows the objects as tables of functions alone, spelled out here as a host
 * without the C++ headers would. docs/host-interfaces.md lists slots and identifiers. */
#include "PlainCHost.h"

#include <stdlib.h>

static const GUID kFactoryClass = {
    0xb2e7a59d, 0x0c38, 0x4ac3, {0xbe, 0x0b, 0xf1, 0x8e, 0xb4, 0x04, 0x09, 0xc5}};
static const GUID kClassFactory = {
    0x00000001, 0x0000, 0x0000, {0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
static const GUID kFactoryHelper = {
    0x82417de7, 0x68a5, 0x474e, {0x8f, 0xee, 0xe8, 0xa9, 0x65, 0xfa, 0x03, 0x33}};
static const GUID kFastValues = {
    0xb869b4f7, 0xf64c, 0x41fb, {0xaa, 0xb2, 0x9e, 0x1f, 0x13, 0xed, 0x48, 0xf7}};
static const GUID kClassId = {
    0x47f6c44f, 0xcea7, 0x4b9b, {0x82, 0xd9, 0x84, 0xe7, 0x42, 0x62, 0x5c, 0x8a}};
static const GUID kRowCount = {
    0x59587400, 0x17d2, 0x4888, {0xb9, 0xa6, 0x15, 0x1c, 0x19, 0xb6, 0x65, 0xdc}};

/* A function is stored as one type and called as the type of its slot. */
typedef void (*Function)(void);

typedef struct Functions {
  HRESULT(STDMETHODCALLTYPE* QueryInterface)(void*, const GUID*, void**);
  ULONG(STDMETHODCALLTYPE* AddRef)(void*);
  ULONG(STDMETHODCALLTYPE* Release)(void*);
  Function slots[16]; /* slot 1 is the first behind IUnknown's three */
} Functions;

struct Object {
  const Functions* functions;
};

#define SLOT(object, number, type) ((type)(object)->functions->slots[(number)-1])

typedef HRESULT(STDMETHODCALLTYPE* CreateInstance)(void*, void*, const GUID*, void**);
typedef HRESULT(STDMETHODCALLTYPE* OpenFolder)(void*, BSTR, Object**);
typedef HRESULT(STDMETHODCALLTYPE* OpenByName)(void*, BSTR, Object**);
typedef HRESULT(STDMETHODCALLTYPE* DescribeFields)(void*, LONG, Object**);
typedef HRESULT(STDMETHODCALLTYPE* GetCount)(void*, LONG*);
typedef HRESULT(STDMETHODCALLTYPE* FetchAll)(void*, LONG, BSTR, VARIANT, Object**);
typedef HRESULT(STDMETHODCALLTYPE* Advance)(void*);
typedef HRESULT(STDMETHODCALLTYPE* AtLast)(void*, VARIANT_BOOL*);
typedef HRESULT(STDMETHODCALLTYPE* ReadFast)(void*, FieldValue*);
typedef HRESULT(STDMETHODCALLTYPE* GetProgId)(void*, BSTR*);
typedef HRESULT(STDMETHODCALLTYPE* CountRows)(void*, LONG, LONG*);
typedef HRESULT(STDMETHODCALLTYPE* GetClassObject)(const GUID*, const GUID*, void**);

void ReleaseObject(Object* object) {
  if (object != NULL) object->functions->Release(object);
}

static HRESULT Query(Object* object, const GUID* id, Object** result) {
  *result = NULL;
  return object->functions->QueryInterface(object, id, (void**)result);
}

HRESULT NewFactory(HMODULE module, Object** factory) {
  const GetClassObject entry =
      (GetClassObject)(Function)GetProcAddress(module, "DllGetClassObject");
  Object* classFactory = NULL;
  HRESULT result = E_FAIL;
  *factory = NULL;
  if (entry != NULL) result = entry(&kFactoryClass, &kClassFactory, (void**)&classFactory);
  if (FAILED(result)) return result;
  result =
      SLOT(classFactory, 1, CreateInstance)(classFactory, NULL, &kFactoryHelper, (void**)factory);
  ReleaseObject(classFactory);
  return result;
}

HRESULT ProgIdOf(Object* object, BSTR* progId) {
  Object* identity = NULL;
  HRESULT result = Query(object, &kClassId, &identity);
  *progId = NULL;
  if (FAILED(result)) return result;
  result = SLOT(identity, 2, GetProgId)(identity, progId);
  ReleaseObject(identity);
  return result;
}

static HRESULT OpenTable(Object* factory, const OLECHAR* folder, const OLECHAR* name,
                         Object** table) {
  Object* workspace = NULL;
  BSTR text = SysAllocString(folder);
  HRESULT result = SLOT(factory, 10, OpenFolder)(factory, text, &workspace);
  SysFreeString(text);
  if (FAILED(result)) return result;
  text = SysAllocString(name);
  result = SLOT(workspace, 5, OpenByName)(workspace, text, table);
  SysFreeString(text);
  ReleaseObject(workspace);
  return result;
}

static HRESULT CountFields(Object* table, LONG* count) {
  Object* fields = NULL;
  HRESULT result = SLOT(table, 5, DescribeFields)(table, 0, &fields);
  if (FAILED(result)) return result;
  result = SLOT(fields, 1, GetCount)(fields, count);
  ReleaseObject(fields);
  return result;
}

static HRESULT Count(Object* table, LONG* count) {
  Object* counter = NULL;
  HRESULT result = Query(table, &kRowCount, &counter);
  if (FAILED(result)) return result;
  result = SLOT(counter, 1, CountRows)(counter, 0, count);
  ReleaseObject(counter);
  return result;
}

static void ClearSlots(FieldValue* slots, LONG count) {
  LONG i = 0;
  for (i = 0; i < count; ++i) VariantClear(&slots[i].value);
}

static HRESULT VisitRows(Object* cursor, FieldValue* slots, LONG count, RowVisitor visit,
                         void* context) {
  Object* values = NULL;
  VARIANT_BOOL finished = VARIANT_FALSE;
  HRESULT result = Query(cursor, &kFastValues, &values);
  while (SUCCEEDED(result)) {
    result = SLOT(cursor, 2, AtLast)(cursor, &finished);
    if (FAILED(result) || finished != VARIANT_FALSE) break;
    result = SLOT(values, 1, ReadFast)(values, slots);
    if (SUCCEEDED(result)) visit(slots, count, context);
    ClearSlots(slots, count);
    if (SUCCEEDED(result)) result = SLOT(cursor, 1, Advance)(cursor);
  }
  ReleaseObject(values);
  return FAILED(result) ? result : S_OK;
}

/* Field i goes into the slot i. */
static void FillMap(VARIANT* map, LONG count) {
  LONG i = 0;
  map->vt = VT_ARRAY | VT_I4;
  map->parray = SafeArrayCreateVector(VT_I4, 0, (ULONG)count);
  for (i = 0; i < count; ++i) SafeArrayPutElement(map->parray, &i, &i);
}

static HRESULT ReadRows(Object* table, LONG count, RowVisitor visit, void* context) {
  FieldValue* const slots = calloc((size_t)count + 1, sizeof *slots); /* zeros are VT_EMPTY */
  Object* cursor = NULL;
  HRESULT result = E_FAIL;
  HRESULT cleared = S_OK;
  VARIANT map;
  VariantInit(&map);
  if (slots != NULL) {
    FillMap(&map, count);
    result = SLOT(table, 9, FetchAll)(table, 0, NULL, map, &cursor);
  }
  if (SUCCEEDED(result)) result = VisitRows(cursor, slots, count, visit, context);
  /* The cursor keeps the map locked: a map that is cleared before it fails to go. */
  ReleaseObject(cursor);
  cleared = VariantClear(&map);
  free(slots);
  return FAILED(result) ? result : cleared;
}

HRESULT ReadTable(Object* factory, const OLECHAR* folder, const OLECHAR* name, RowVisitor visit,
                  void* context, LONG* rowCount) {
  Object* table = NULL;
  LONG fields = 0;
  HRESULT result = OpenTable(factory, folder, name, &table);
  *rowCount = 0;
  if (FAILED(result)) return result;
  result = CountFields(table, &fields);
  if (SUCCEEDED(result)) result = ReadRows(table, fields, visit, context);
  if (SUCCEEDED(result)) result = Count(table, rowCount);
  ReleaseObject(table);
  return result;
}
