/* A host in plain C, run by the tests of the registered module. */
#pragma once

#ifndef COBJMACROS
#define COBJMACROS
#endif
#include <oaidl.h>
#include <objbase.h>
#include <windows.h>

#ifdef __cplusplus
extern "C" {
#endif

/* A value slot as a host without our headers declares it. */
typedef struct FieldValue {
  VARIANT value;
  void* hostData[2];
} FieldValue;

#define PLAIN_C_ROWS 4

typedef struct PlainCResult {
  FieldValue values[PLAIN_C_ROWS][2]; /* rows x the first two fields */
  int rows;
  LONG count;
  BSTR progId;
} PlainCResult;

/* Reads the table in the calling thread's apartment and lets go of everything but the result. The
 * first call that fails decides the answer. */
HRESULT RunPlainCHost(const wchar_t* folder, const wchar_t* name, PlainCResult* seen);

void FreePlainCResult(PlainCResult* seen);

#ifdef __cplusplus
}
#endif
