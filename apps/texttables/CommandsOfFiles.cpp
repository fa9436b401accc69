// create, copy, rename and delete.
#include <filesystem>

#include "Commands.h"
#include "Diagnostics.h"
#include "Failures.h"
#include "Fields.h"
#include "ModuleHost.h"
#include "ShownText.h"
#include "Terminal.h"
#include "host/CoreSupport/BString.h"
#include "host/CoreSupport/Components.h"
#include "host/interfaces/HostClasses.h"
#include "platform/FileNames.h"

namespace TextTables {

namespace {

using quenra::BString;
using quenra::ComPtr;

// The data source's code for what does not fit a field.
constexpr HRESULT kFieldTypeDiffers = static_cast<HRESULT>(0x80040955u);

std::filesystem::path FileOf(const TablePath& path) {
  return std::filesystem::path(NativeFromFileName(path.folder)) /
         std::filesystem::path(NativeFromFileName(path.name));
}

// A link that leads nowhere is in the way as well.
void RequireFree(const TablePath& path) {
  const std::filesystem::path file = FileOf(path);
  std::error_code ignored;
  if (!std::filesystem::exists(std::filesystem::symlink_status(file, ignored))) return;
  const bool folder = std::filesystem::is_directory(file, ignored);
  throw Refusal(quenra::kFileExists, Shown(path.name) + (folder ? " exists already and is a folder"
                                                                : " exists already"));
}

ComPtr<quenra::HostField> MakeField(const NewField& field) {
  ComPtr<quenra::HostFieldEdit> edit;
  Check(quenra::CreateComponentInstance(quenra::CLSID_HostField, edit.Receive()), field.name);
  const BString name(field.name);
  Check(edit->SetName(name.Get()), field.name);
  Check(edit->SetAliasName(name.Get()), field.name);
  Check(edit->SetType(field.type), field.name);
  if (field.length) Check(edit->SetLength(*field.length), field.name);
  if (field.precision) Check(edit->SetPrecision(*field.precision), field.name);
  auto result = edit.As<quenra::HostField>();
  if (!result) Check(E_NOINTERFACE, field.name);
  return result;
}

ComPtr<quenra::HostFieldCollection> MakeFields(const std::vector<NewField>& fields) {
  ComPtr<quenra::HostFieldCollectionEdit> edit;
  Check(quenra::CreateComponentInstance(quenra::CLSID_HostFieldCollection, edit.Receive()),
        u"fields");
  for (const NewField& field : fields) Check(edit->AddField(MakeField(field).Get()), field.name);
  auto result = edit.As<quenra::HostFieldCollection>();
  if (!result) Check(E_NOINTERFACE, u"fields");
  return result;
}

// The dataset of the folder's list with that name. Those of the list are not opened yet.
ComPtr<quenra::IPlugInFileOperations> FindListed(quenra::IPlugInWorkspaceHelper& workspace,
                                                 const std::u16string& name) {
  ComPtr<quenra::HostArray> datasets;
  LONG count = 0;
  if (FAILED(workspace.EnumerateDatasets(quenra::kDatasetTypeTable, datasets.Receive())) ||
      !datasets || FAILED(datasets->GetCount(&count)))
    return {};
  for (LONG i = 0; i < count; ++i) {
    ComPtr<IUnknown> element;
    if (FAILED(datasets->GetElement(i, element.Receive()))) continue;
    const auto info = element.As<quenra::IPlugInDatasetInfo>();
    BString title;
    if (info && !FAILED(info->DatasetFileTitle(title.Receive())) && title.View() == name)
      return element.As<quenra::IPlugInFileOperations>();
  }
  return {};
}

// Files can be handled whatever is in them: a table that cannot be opened (a section of schema.ini
// that cannot be understood) is taken from the folder's list.
ComPtr<quenra::IPlugInFileOperations> FileOperationsOf(const ModuleHost& host,
                                                       const TablePath& path) {
  const auto workspace = host.OpenFolder(path.folder);
  const BString name(path.name);
  ComPtr<quenra::IPlugInDatasetHelper> dataset;
  const HRESULT result = workspace->OpenDatasetByName(name.Get(), dataset.Receive());
  ComPtr<quenra::IPlugInFileOperations> operations;
  if (FAILED(result)) {
    operations = FindListed(*workspace, path.name);
    if (!operations) CheckOpened(result, path.name, PathOf(path));
    TakeChainedError(result);
  } else {
    operations = dataset.As<quenra::IPlugInFileOperations>();
    if (!operations) Check(E_NOINTERFACE, path.name);
  }
  return operations;
}

using AllowsOperation = HRESULT (STDMETHODCALLTYPE quenra::IPlugInFileOperations::*)(VARIANT_BOOL*);

void RequireAllowed(quenra::IPlugInFileOperations& operations, AllowsOperation allows,
                    const TablePath& path) {
  VARIANT_BOOL allowed = VARIANT_FALSE;
  Check((operations.*allows)(&allowed), path.name);
  if (allowed == VARIANT_FALSE) Check(E_FAIL, path.name);
}

// The call that changes files is finished before an interrupt ends the program.
template <class Call>
void RunWhole(const Call& call) {
  const Terminal::DeferInterrupts defer;
  call();
  Terminal::DeferInterrupts::Poll();
}

// The type that a field of a new table comes back with: schema.ini has no words for some.
LONG TypeReadBack(LONG type) noexcept {
  switch (type) {
    case kObjectIdField:
      return kIntegerField;
    case kGuidField:
    case kGlobalIdField:
      return kStringField;
    case kTimestampOffsetField:
      return kDateField;
    default:
      return type;
  }
}

// A section that was in schema.ini before decides the types of the columns, which may surprise.
void WarnOfOtherTypes(quenra::IPlugInDatasetHelper& dataset, const TablePath& path,
                      const std::vector<NewField>& wanted) {
  std::vector<Field> fields;
  try {
    fields = FieldsOf(dataset, path.name);
  } catch (const Refusal&) {
    return;  // created, and renamed or removed by somebody else since
  }
  for (std::size_t i = 0; i < fields.size() && i < wanted.size(); ++i)
    if (fields[i].type != TypeReadBack(wanted[i].type))
      ReportWarning(kFieldTypeDiffers,
                    "field \"" + Shown(wanted[i].name) + "\" is " + FieldTypeName(fields[i].type) +
                        ": schema.ini had described " + Shown(path.name) + " already");
}

using Workspace = ComPtr<quenra::IPlugInWorkspaceHelper>;
using NewTable = ComPtr<quenra::IPlugInDatasetHelper>;

HRESULT CreateOver(const Workspace& workspace, const BString& name,
                   quenra::HostFieldCollection& fields, NewTable& table) {
  const auto creator = workspace.As<quenra::IPlugInCreateDataset>();
  return creator ? creator->CreateTable(name.Get(), &fields, table.Receive()) : E_NOINTERFACE;
}

// The module sees to it that a file which comes while the table is made is kept as well.
HRESULT CreateNew(const Workspace& workspace, const BString& name,
                  quenra::HostFieldCollection& fields, NewTable& table) {
  const auto creator = workspace.As<quenra::ITextFileWorkspace>();
  return creator ? creator->CreateNewTable(name.Get(), &fields, table.Receive()) : E_NOINTERFACE;
}

}  // namespace

void RunCreate(const CommandLine& line, Output&) {
  const TablePath path = SplitTablePath(line.path);
  const ModuleHost host(line.global);
  const auto workspace = host.OpenFolder(path.folder);
  if (!line.overwrite) RequireFree(path);
  const auto fields = MakeFields(line.fields);
  const BString name(path.name);
  ComPtr<quenra::IPlugInDatasetHelper> dataset;
  RunWhole([&] {
    Check((line.overwrite ? CreateOver : CreateNew)(workspace, name, *fields.Get(), dataset),
          path.name);
  });
  // Hosts may ask for older types, and then get them.
  const bool usualTypes = !line.global.fieldTypeVersion && line.global.hostOptions.empty();
  if (!line.global.quiet && usualTypes) WarnOfOtherTypes(*dataset.Get(), path, line.fields);
}

void RunCopy(const CommandLine& line, Output&) {
  const TablePath path = SplitTablePath(line.path);
  const TablePath target = SplitTablePath(line.target);
  const ModuleHost host(line.global);
  const auto operations = FileOperationsOf(host, path);
  host.OpenFolder(target.folder);  // refuses what is no folder
  RequireFree(target);
  RequireAllowed(*operations.Get(), &quenra::IPlugInFileOperations::AllowsCopy, path);
  ComPtr<quenra::HostWorkspaceEdit> edit;
  Check(quenra::CreateComponentInstance(quenra::CLSID_HostWorkspace, edit.Receive()),
        target.folder);
  const BString folder(target.folder);
  Check(edit->SetWorkspacePath(folder.Get()), target.folder);
  const auto workspace = edit.As<quenra::HostWorkspace>();
  const BString name(target.name);
  RunWhole([&] { Check(operations->CopyDataset(name.Get(), workspace.Get()), target.name); });
  ReportWarnings(line.global.quiet);
}

void RunRename(const CommandLine& line, Output&) {
  const TablePath path = SplitTablePath(line.path);
  if (SplitTablePath(line.target).name != line.target)
    throw UsageError("rename takes a name, not a path: \"" + Shown(line.target) +
                     "\"; a table gets into another folder by copy and delete");
  const ModuleHost host(line.global);
  const auto operations = FileOperationsOf(host, path);
  RequireFree({path.folder, line.target});
  RequireAllowed(*operations.Get(), &quenra::IPlugInFileOperations::AllowsRename, path);
  const BString name(line.target);
  BString result;
  RunWhole([&] { Check(operations->RenameDataset(name.Get(), result.Receive()), line.target); });
  ReportWarnings(line.global.quiet);
}

void RunDelete(const CommandLine& line, Output&) {
  const TablePath path = SplitTablePath(line.path);
  const ModuleHost host(line.global);
  const auto operations = FileOperationsOf(host, path);
  RequireAllowed(*operations.Get(), &quenra::IPlugInFileOperations::AllowsDelete, path);
  RunWhole([&] { Check(operations->DeleteDataset(), path.name); });
}

}  // namespace TextTables
