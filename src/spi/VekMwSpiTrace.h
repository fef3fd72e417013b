// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_SPI_VEKMWSPITRACE_H
#define ORV_SPI_VEKMWSPITRACE_H

/// \file
/// Types that the helper library's LoggingWrapper uses for traces. There is no table of a trace
/// here, and a host offers none: it gets traces through Orv::LoggingWrapper::setSink. Conventions:
/// OrvConventions.h.

/// Names a part of the system in traces; the values are handed out by the helper library.
typedef unsigned long long VekMwSpiTraceSubsystemHandle_2T;

/// Weight of a trace: 3, 4 and 6 for what also goes to the log (a smaller number weighs more), 14
/// for the flow of calls.
typedef int VekMwSpiTraceLevelT;

static_assert(sizeof(VekMwSpiTraceSubsystemHandle_2T) == 8, "64 bits");

#endif
