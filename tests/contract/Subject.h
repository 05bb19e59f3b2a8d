// What a contract suite runs on: one implementation of a service, and a way to let its time pass.
#pragma once

#include <functional>
#include <memory>

namespace tarvix {

// `waitUntil` drives the service until the condition holds; false when it doesn't within a generous limit.
template <class Service>
struct ContractSubject {
    std::shared_ptr<void> world;  // owns the service
    Service& service;
    std::function<bool(const std::function<bool()>&)> waitUntil;
};

template <class Service>
using ContractFactory = std::function<ContractSubject<Service>()>;

}  // namespace tarvix
