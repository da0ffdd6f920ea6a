#include "platform/portal/PortalScreenSystem.h"

#include <utility>

namespace tavi {

std::unique_ptr<PortalScreenSystem> PortalScreenSystem::open(Ports ports) {
    auto bus = std::make_unique<PortalBus>();
    const auto facts = readScreenCastFacts(*bus);
    if (!facts) {
        return nullptr;
    }
    return std::unique_ptr<PortalScreenSystem>(
        new PortalScreenSystem(std::move(bus), *facts, std::move(ports)));
}

PortalScreenSystem::PortalScreenSystem(std::unique_ptr<PortalBus> bus, const ScreenCastFacts& facts,
                                       Ports ports)
    : m_bus(std::move(bus)),
      m_facts(facts),
      m_pointer(ports.main, std::move(ports.arrow)),
      m_content(*m_bus, ports.displays),
      m_casts(*m_bus, facts, RestoreTokens(std::move(ports.tokenFile)),
              {std::move(ports.colours), m_pointer}, std::move(ports.displays)) {}

} // namespace tavi
