#pragma once

#include "baking/kernels/NoiseRow.h"
#include "baking/kernels/NormalRow.h"

namespace vyr::MaterialTranslation::baking
{
/// The kernels for one kind of lanes.
template <class Lanes> KernelSet kernelSetOf(const char* name)
{
    return {name, normalRow<Lanes>, noiseGradients<Lanes>, addNoiseOctave<Lanes>,
            shadeNoise<Lanes>};
}

KernelSet portableKernels();
KernelSet avx2Kernels();
KernelSet avx512Kernels();
} // namespace vyr::MaterialTranslation::baking
