// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/plc/plc_source.h"

namespace fxview {

PlcSource::~PlcSource() = default;

}  // namespace fxview
