#include "baking/kernels/KernelSetOf.h"
#include "baking/kernels/LanesAvx512.h"

namespace vyr::MaterialTranslation::baking
{
KernelSet avx512Kernels()
{
    return kernelSetOf<Avx512Lanes>("avx512");
}
} // namespace vyr::MaterialTranslation::baking
