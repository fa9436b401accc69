// The host's fields: one field, and the ordered collection of a table's fields.
//
// Reading and editing are separate interfaces of the same object.
#pragma once

#include "host/interfaces/InterfaceId.h"

namespace quenra {

// What a host may ask of a field. Texts are new BSTRs that the caller frees.
struct HostField : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE GetName(BSTR* name) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetAliasName(BSTR* name) = 0;
  // A field type code (0 small integer, 1 integer, ... 16 timestamp with offset).
  virtual HRESULT STDMETHODCALLTYPE GetType(LONG* type) = 0;
  // In bytes for numbers and dates, in UTF-16 code units for text; 0 when not set.
  virtual HRESULT STDMETHODCALLTYPE GetLength(LONG* length) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetPrecision(LONG* precision) = 0;
};

inline constexpr IID IID_HostField = {
    0x7e4d4038, 0x1524, 0x42af, {0xbb, 0xce, 0xde, 0x25, 0xa0, 0x1b, 0x5b, 0x81}};
template <>
inline constexpr const IID& kInterfaceId<HostField> = IID_HostField;

// Editing a field before it joins a collection. Texts are copied.
struct HostFieldEdit : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE SetName(BSTR name) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetAliasName(BSTR name) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetType(LONG type) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetLength(LONG length) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetPrecision(LONG precision) = 0;
};

inline constexpr IID IID_HostFieldEdit = {
    0x1e86b610, 0x8cf2, 0x4825, {0xbc, 0xb1, 0x76, 0x5d, 0x27, 0x2e, 0xd2, 0x7a}};
template <>
inline constexpr const IID& kInterfaceId<HostFieldEdit> = IID_HostFieldEdit;

// The free text that a data source attaches to a field, such as "virtual coordinate field".
struct HostFieldTag : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE GetTag(BSTR* tag) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetTag(BSTR tag) = 0;
};

inline constexpr IID IID_HostFieldTag = {
    0x3e90f681, 0x5042, 0x4860, {0xb5, 0x62, 0xaa, 0x49, 0xe9, 0x3b, 0xd4, 0x0c}};
template <>
inline constexpr const IID& kInterfaceId<HostFieldTag> = IID_HostFieldTag;

// The fields of a table, in the order of its columns; indexes from 0.
struct HostFieldCollection : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE GetFieldCount(LONG* count) = 0;
  // E_INVALIDARG when `index` is outside the collection; the caller releases the field.
  virtual HRESULT STDMETHODCALLTYPE GetField(LONG index, HostField** field) = 0;
  // The first field of that name, without regard to case; -1 and S_FALSE when there is none.
  virtual HRESULT STDMETHODCALLTYPE FindField(BSTR name, LONG* index) = 0;
};

inline constexpr IID IID_HostFieldCollection = {
    0xd439cbff, 0xc9d3, 0x4af2, {0xa2, 0x7f, 0x00, 0xe9, 0xc4, 0x9e, 0x89, 0x55}};
template <>
inline constexpr const IID& kInterfaceId<HostFieldCollection> = IID_HostFieldCollection;

// Building a collection.
struct HostFieldCollectionEdit : public IUnknown {
  // Appends; the collection holds its own reference.
  virtual HRESULT STDMETHODCALLTYPE AddField(HostField* field) = 0;
};

inline constexpr IID IID_HostFieldCollectionEdit = {
    0x382668a3, 0x0a63, 0x494f, {0xa3, 0x2b, 0x29, 0xb1, 0xab, 0xd7, 0xb9, 0x68}};
template <>
inline constexpr const IID& kInterfaceId<HostFieldCollectionEdit> = IID_HostFieldCollectionEdit;

// The fields of a table that has very many: they are made when somebody asks for them. A data
// source offers it to the collection; indexes from 0.
struct HostFieldSource : public IUnknown {
  // Always the same.
  virtual HRESULT STDMETHODCALLTYPE GetSourceFieldCount(LONG* count) = 0;
  // A new field at each call, which the caller releases. E_INVALIDARG when `index` is outside.
  virtual HRESULT STDMETHODCALLTYPE MakeSourceField(LONG index, HostField** field) = 0;
  // The name that the field is made with.
  virtual HRESULT STDMETHODCALLTYPE GetSourceFieldName(LONG index, BSTR* name) = 0;
};

inline constexpr IID IID_HostFieldSource = {
    0xb41e7c93, 0x58da, 0x4d02, {0xa6, 0xf7, 0x0c, 0x9e, 0x2d, 0x85, 0x14, 0xa6}};
template <>
inline constexpr const IID& kInterfaceId<HostFieldSource> = IID_HostFieldSource;

// A collection that need not hold all its fields. Others get every field added.
struct HostFieldCollectionFilling : public IUnknown {
  // Lets the empty collection have the fields of the source, to which it takes a reference; fields
  // that are added stand behind them. E_INVALIDARG for a null source, E_FAIL for a collection that
  // is not empty.
  virtual HRESULT STDMETHODCALLTYPE FillFrom(HostFieldSource* source) = 0;
};

inline constexpr IID IID_HostFieldCollectionFilling = {
    0xe86f2a15, 0x9c47, 0x4b3e, {0x8d, 0x10, 0x73, 0x5b, 0xa9, 0xf0, 0xc2, 0xe4}};
template <>
inline constexpr const IID& kInterfaceId<HostFieldCollectionFilling> =
    IID_HostFieldCollectionFilling;

}  // namespace quenra
