// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_WIRE_RPCERROR_H
#define ORV_HOST_NETCONF_WIRE_RPCERROR_H

#include "netconf/wire/InstancePath.h"

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace OrvHost {

/// An rpc-error of RFC 6241, appendix A. Its severity is "error".
struct RpcError {
    std::string type = "application"; ///< or "protocol", "rpc"
    std::string tag;                  ///< "data-exists"
    std::string appTag{};             ///< empty: none
    InstancePath path{};              ///< empty: none
    std::string message;              ///< for people
    std::string info{};               ///< the content of error-info, in XML; empty: none

    /// The element, with its namespace declared.
    std::string toXml() const;
};

/// An error of the type "protocol".
RpcError protocolError(const std::string& tag, const std::string& message);

/// `<bad-element>` or another of the RFC's elements of error-info.
std::string errorInfo(const std::string& element, const std::string& text);

/// A request that is answered with errors; nothing of it was done.
class RpcErrors : public std::runtime_error {
public:
    /// \p errors: at least one.
    explicit RpcErrors(std::vector<RpcError> errors)
        : std::runtime_error(errors.front().message), mErrors(std::move(errors)) {}
    explicit RpcErrors(RpcError error) : RpcErrors(std::vector<RpcError>{std::move(error)}) {}

    const std::vector<RpcError>& errors() const { return mErrors; }

private:
    std::vector<RpcError> mErrors;
};

}

#endif
