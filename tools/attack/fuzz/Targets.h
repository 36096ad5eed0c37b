#pragma once

#include <string>

/// @file
/// What is tried with bytes of which anything may be expected. Each function says what is wrong with what came of
/// them, and nothing when all holds; crashes and leaks are for the sanitizers. libFuzzer calls them by way of
/// Fuzzer.cpp, and a test with all inputs that were kept.
namespace vyr::attack
{

/// An asset file.
std::string tryJson(const std::string& bytes);

/// An image file, whose heights become a normal map; or pixels, which are packed as PNG.
std::string tryImage(const std::string& bytes);

/// A document, which is validated and brought into all forms.
std::string tryMtlx(const std::string& bytes);

/// The answers of a host, one after the other, to the translation of a material.
std::string tryHost(const std::string& bytes);

} // namespace vyr::attack
