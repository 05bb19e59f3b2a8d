// A collection of unique elements that keeps insertion order.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <vector>

namespace tarvix {

// Insertion order is iteration order, and the first of two equal elements stays. Lookup goes by hash and equality; an
// element that isn't equal to itself (a not-a-number coordinate) is never found and can be inserted again and again.
template <class T, class Hash = std::hash<T>, class Equal = std::equal_to<T>>
class OrderedSet {
public:
    using value_type = T;
    using const_iterator = typename std::vector<T>::const_iterator;

    OrderedSet() = default;
    OrderedSet(std::initializer_list<T> elements) {
        for (const T& element : elements) insert(element);
    }

    // Appends the element unless an equal one is already there; says whether it did.
    bool insert(T element) {
        if ((elements_.size() + 1) * 2 > slots_.size()) grow();
        const std::size_t slot = slotOf(element);
        if (slots_[slot] != 0) return false;
        elements_.push_back(std::move(element));
        slots_[slot] = static_cast<std::uint32_t>(elements_.size());
        stamp_ = nextStamp();
        return true;
    }

    // Appends the other set's new elements in their order.
    void unite(const OrderedSet& other) {
        for (const T& element : other) insert(element);
    }

    bool contains(const T& element) const { return !slots_.empty() && slots_[slotOf(element)] != 0; }

    void clear() { *this = OrderedSet(); }

    std::size_t size() const { return elements_.size(); }
    bool empty() const { return elements_.empty(); }
    const T& operator[](std::size_t index) const { return elements_[index]; }
    const T& front() const { return elements_.front(); }
    const T& back() const { return elements_.back(); }
    const_iterator begin() const { return elements_.begin(); }
    const_iterator end() const { return elements_.end(); }

    // Two sets with the same stamp hold the same elements: a copy keeps its original's stamp, every change takes a new
    // one. 0 is the stamp of a set that never held anything. What is derived from a whole set can be kept under it.
    std::uint64_t stamp() const { return stamp_; }

    // Same elements in the same order.
    friend bool operator==(const OrderedSet& a, const OrderedSet& b) { return a.elements_ == b.elements_; }

private:
    static std::uint64_t nextStamp() {
        static std::atomic<std::uint64_t> last = 0;
        return ++last;
    }

    // The slot that holds an element equal to this one, else the free slot where it belongs.
    std::size_t slotOf(const T& element) const {
        const std::size_t mask = slots_.size() - 1;
        std::size_t slot = Hash{}(element) & mask;
        while (slots_[slot] != 0 && !Equal{}(elements_[slots_[slot] - 1], element)) slot = (slot + 1) & mask;
        return slot;
    }

    void grow() {
        slots_.assign(slots_.empty() ? 16 : slots_.size() * 2, 0);
        for (std::size_t i = 0; i < elements_.size(); ++i)
            slots_[slotOf(elements_[i])] = static_cast<std::uint32_t>(i + 1);
    }

    std::vector<T> elements_;
    std::vector<std::uint32_t> slots_;  // open addressing; 0 is free, else index + 1
    std::uint64_t stamp_ = 0;
};

}  // namespace tarvix
