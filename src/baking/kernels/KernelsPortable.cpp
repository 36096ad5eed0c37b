#include "baking/kernels/KernelSetOf.h"
#include "baking/kernels/LanesPortable.h"

namespace vyr::MaterialTranslation::baking
{
KernelSet portableKernels()
{
    return kernelSetOf<PortableLanes>("portable");
}
} // namespace vyr::MaterialTranslation::baking
