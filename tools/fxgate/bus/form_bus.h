// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Makes the bus in a form: the form, its connection, and the store that all forms share.

#pragma once

#include "tools/fxgate/gateway.h"
#include "tools/fxgate/store/store.h"

namespace fxgate {

class BusFactory
{
public:
    explicit BusFactory(const Environment& environment) : m_environment(environment) {}

    Gateway::MakeBus maker();  // for as long as the factory lives

private:
    std::unique_ptr<Bus> make(FormKind kind, const Configuration& configuration,
                              const Plant& plant);

    Environment m_environment;
    std::weak_ptr<Store> m_store;  // of the forms that there are
};

}  // namespace fxgate
