#include "schema/TextColumns.h"

#include "schema/TextColumnsKernel.h"

namespace TextFile {

WriteTextColumns ChooseTextColumns(TextColumnsCode code) noexcept {
  const WriteTextColumns avx512 = code == TextColumnsCode::kBest ? Avx512TextColumns() : nullptr;
  return avx512 != nullptr ? avx512 : &RunTextColumns<CleanUnits>;
}

}  // namespace TextFile
