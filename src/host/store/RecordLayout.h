// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_RECORDLAYOUT_H
#define ORV_HOST_STORE_RECORDLAYOUT_H

#include "model/Model.h"

#include <string>
#include <string_view>

namespace OrvHost {

/// What is needed of a model to read the records of its objects: the names of classes and
/// attributes, kinds of types, enumerators and members, as bytes.
std::string encodedLayout(const Model& model);

/// A model with only that, for AttributeBytes. Throws BytesError if \p bytes have another form.
Model decodedLayout(std::string_view bytes);

}

#endif
