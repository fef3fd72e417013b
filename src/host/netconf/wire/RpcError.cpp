// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RpcError.h"

#include "netconf/wire/XmlText.h"

namespace OrvHost {

namespace {

constexpr const char* kBase = "urn:ietf:params:xml:ns:netconf:base:1.0";

}

RpcError protocolError(const std::string& tag, const std::string& message) {
    RpcError error;
    error.type = "protocol";
    error.tag = tag;
    error.message = message;
    return error;
}

std::string errorInfo(const std::string& element, const std::string& text) {
    return xmlElement(element, text);
}

std::string RpcError::toXml() const {
    std::string xml = std::string("<rpc-error xmlns=\"") + kBase + "\">";
    xml += xmlElement("error-type", type) + xmlElement("error-tag", tag) +
           xmlElement("error-severity", "error");
    if (!appTag.empty()) {
        xml += xmlElement("error-app-tag", appTag);
    }
    if (!path.text.empty()) {
        xml += "<error-path";
        for (const auto& [prefix, name] : path.prefixes) {
            xml += " xmlns:" + prefix + "=\"" + xmlEscaped(name) + "\"";
        }
        xml += ">" + xmlEscaped(path.text) + "</error-path>";
    }
    xml += "<error-message xml:lang=\"en\">" + xmlEscaped(message) + "</error-message>";
    if (!info.empty()) {
        xml += "<error-info>" + info + "</error-info>";
    }
    return xml + "</rpc-error>";
}

}
