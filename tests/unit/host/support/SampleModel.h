// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_HOST_SUPPORT_SAMPLEMODEL_H
#define ORV_TESTS_HOST_SUPPORT_SAMPLEMODEL_H

#include "model/Model.h"
#include "model/building/ModelBuilder.h"

namespace OrvHost {

/// A network in small, with every kind of association:
///   Network (top) > Node > Cell, Antenna; Node > Node (a class that contains itself)
///   Cell.antennas 0..2 <-> Antenna.cell 1..1 (kept when the antenna is deleted)
///   Cell.next <-> Cell.previous, a class with itself
///   Cell.friends <-> Cell.friends, a class with itself through one attribute
///   Cell.source -> Antenna 0..1 or Node 0..2, unidirectional with several classes
///   Antenna.power -> Node, unidirectional
/// Cell.any is a reference to any class, Cell.place a struct that holds a reference to a Node.
ModelBuilder sampleBuilder();
Model sampleModel();

}

#endif
