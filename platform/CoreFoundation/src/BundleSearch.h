// BundleSearch: finds the bundle of an identifier among the loaded libraries.
//
// There is no launcher that registers bundles, and the program may be anybody's. So a bundle is
// found by where its library lies: in Contents/SYSTEM of the bundle, or beside it.
#ifndef COREFOUNDATION_BUNDLESEARCH_H
#define COREFOUNDATION_BUNDLESEARCH_H

#include <string>

namespace cf
{

/// The bundle's folder, absolute; empty when no loaded library leads to one. First come the bundles
/// that a library lies in, then the "*.bundle" folders beside a library, by name.
/// inIdentifier is UTF-8 and not empty.
std::string FindBundleFolder(const std::string& inIdentifier);

}  // namespace cf

#endif
