// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxgate/bus/form_bus.h"

#include "tools/fxgate/bus/bus_client.h"
#include "tools/fxgate/bus/plain_form.h"
#include "tools/fxgate/bus/sparkplug_form.h"

namespace fxgate {

namespace {

// A bus with what it stands on.
class FormBus : public Bus
{
public:
    FormBus(std::unique_ptr<Form> form, const std::shared_ptr<Store>& store,
            const BrokerSettings& broker, const Plant& plant, const Environment& environment)
        : m_form(std::move(form)), m_store(store),
          m_client(*m_form, *m_store, broker, plant, environment)
    {}

    void start() override
    {
        m_client.onWrite = onWrite;
        m_client.onState = onState;
        m_client.start();
    }
    void tick() override { m_client.tick(); }
    void stop() override { m_client.stop(); }
    void publish(const QVector<Change>& changes) override { m_client.publish(changes); }
    void linkChanged(const QString& link) override { m_client.linkChanged(link); }
    void answer(const WriteRequest& request, const WriteResult& result) override
    {
        m_client.answer(request, result);
    }
    BusStatus status() const override { return m_client.status(); }

private:
    std::unique_ptr<Form> m_form;
    std::shared_ptr<Store> m_store;
    BusClient m_client;
};

}  // namespace

Gateway::MakeBus BusFactory::maker()
{
    return [this](FormKind kind, const Configuration& configuration, const Plant& plant) {
        return make(kind, configuration, plant);
    };
}

std::unique_ptr<Bus> BusFactory::make(FormKind kind, const Configuration& configuration,
                                      const Plant& plant)
{
    std::shared_ptr<Store> store = m_store.lock();
    if (!store)
        m_store = store = std::make_shared<Store>(configuration.store);
    std::unique_ptr<Form> form;
    if (kind == FormKind::Plain)
        form = std::make_unique<PlainForm>(configuration.plain->prefix, configuration.gateway.name,
                                           plant);
    else
        form = std::make_unique<SparkplugForm>(*configuration.sparkplug, plant);
    return std::make_unique<FormBus>(std::move(form), store, configuration.broker, plant,
                                     m_environment);
}

}  // namespace fxgate
