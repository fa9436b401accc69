/* Reading tables in plain C. */
#pragma once

#include "PlainCom.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Every object begins with a pointer to its functions, and is the first argument of each. */
typedef struct Object Object;

/* A value slot. The module writes the value alone. */
typedef struct FieldValue {
  VARIANT value;
  void* hostData[2];
} FieldValue;

/* Called for each row; the values are cleared when it returns. */
typedef void (*RowVisitor)(const FieldValue* values, LONG count, void* context);

/* All of these: the first call that fails decides the answer, and whatever was opened on the way is
 * released. `*result` is null or 0 after a failure. */

/* The calling thread's workspace factory. The caller releases it. */
HRESULT NewFactory(HMODULE module, Object** factory);

/* The class's ProgID, if it is registered. The caller frees the text. */
HRESULT ProgIdOf(Object* object, BSTR* progId);

/* Reads every row of the table `name` in `folder`, and counts the rows. */
HRESULT ReadTable(Object* factory, const OLECHAR* folder, const OLECHAR* name, RowVisitor visit,
                  void* context, LONG* rowCount);

/* Null is allowed. */
void ReleaseObject(Object* object);

#ifdef __cplusplus
}
#endif
