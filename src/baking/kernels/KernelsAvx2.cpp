#include "baking/kernels/KernelSetOf.h"
#include "baking/kernels/LanesAvx2.h"

namespace vyr::MaterialTranslation::baking
{
KernelSet avx2Kernels()
{
    return kernelSetOf<Avx2Lanes>("avx2");
}
} // namespace vyr::MaterialTranslation::baking
