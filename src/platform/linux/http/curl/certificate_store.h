// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace nimbo {

/// Where OpenSSL finds the authorities it trusts; either may be empty.
struct CertificateStore {
  std::string file;    ///< all of them, one after the other
  std::string folder;  ///< one per file, named by a hash of the authority's name
  bool operator==(const CertificateStore&) const = default;
};

/// What to use of the system's store and of the user's, each part of which takes the place of the
/// system's. The system's file is left out when the folder serves as well: reading its 140
/// certificates takes ten times as long as the rest of a request.
[[nodiscard]] CertificateStore chooseStore(const CertificateStore& system, const CertificateStore& users);

}  // namespace nimbo
