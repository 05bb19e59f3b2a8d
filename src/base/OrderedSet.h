// A collection of unique elements that keeps insertion order.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <vector>

namespace tarvix {

// Insertion order is iteration order, and the first of two equal elements stays. Lookup goes by hash and equality; an
// element that isn't equal to itself (a not-a-number coordinate) is never found and can be inserted again and again.
// Elements are immutable and shared between sets, so that a copy or a subset copies no element.
template <class T, class Hash = std::hash<T>, class Equal = std::equal_to<T>>
class OrderedSet {
    using Shared = std::shared_ptr<const T>;

public:
    using value_type = T;

    class const_iterator {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = T;
        using difference_type = std::ptrdiff_t;
        using pointer = const T*;
        using reference = const T&;

        const_iterator() = default;
        explicit const_iterator(const Shared* at) : at_(at) {}
        reference operator*() const { return **at_; }
        pointer operator->() const { return at_->get(); }
        const_iterator& operator++() {
            ++at_;
            return *this;
        }
        const_iterator operator++(int) { return const_iterator(at_++); }
        friend bool operator==(const_iterator, const_iterator) = default;

    private:
        const Shared* at_ = nullptr;
    };

    OrderedSet() = default;
    OrderedSet(std::initializer_list<T> elements) {
        for (const T& element : elements) insert(element);
    }

    // Appends the element unless an equal one is already there; says whether it did.
    bool insert(T element) {
        if ((elements_.size() + 1) * 2 > slots_.size()) index();
        const std::size_t slot = slotOf(element);
        if (slots_[slot] != 0) return false;
        elements_.push_back(std::make_shared<const T>(std::move(element)));
        slots_[slot] = static_cast<std::uint32_t>(elements_.size());
        stamp_ = nextStamp();
        return true;
    }

    // Appends the other set's new elements in their order.
    void unite(const OrderedSet& other) {
        for (const T& element : other) insert(element);
    }

    // The elements at these places, which rise.
    OrderedSet subset(const std::vector<std::uint32_t>& places) const {
        OrderedSet result;
        result.elements_.reserve(places.size());
        for (const std::uint32_t place : places) result.elements_.push_back(elements_[place]);
        if (!places.empty()) result.stamp_ = nextStamp();
        return result;
    }

    bool contains(const T& element) const {
        // Without an index, as in a subset that nothing was inserted into, the elements are looked through.
        if (slots_.empty()) return std::any_of(begin(), end(), [&](const T& each) { return Equal{}(each, element); });
        return slots_[slotOf(element)] != 0;
    }

    void clear() { *this = OrderedSet(); }

    std::size_t size() const { return elements_.size(); }
    bool empty() const { return elements_.empty(); }
    const T& operator[](std::size_t place) const { return *elements_[place]; }
    const T& front() const { return *elements_.front(); }
    const T& back() const { return *elements_.back(); }
    const_iterator begin() const { return const_iterator(elements_.data()); }
    const_iterator end() const { return const_iterator(elements_.data() + elements_.size()); }

    // Two sets with the same stamp hold the same elements: a copy keeps its original's stamp, every change takes a new
    // one. 0 is the stamp of a set that never held anything. What is derived from a whole set can be kept under it.
    std::uint64_t stamp() const { return stamp_; }

    // Same elements in the same order.
    friend bool operator==(const OrderedSet& a, const OrderedSet& b) {
        return std::equal(a.begin(), a.end(), b.begin(), b.end());
    }

private:
    static std::uint64_t nextStamp() {
        static std::atomic<std::uint64_t> last = 0;
        return ++last;
    }

    // The slot that holds an element equal to this one, else the free slot where it belongs.
    std::size_t slotOf(const T& element) const {
        const std::size_t mask = slots_.size() - 1;
        std::size_t slot = Hash{}(element)&mask;
        while (slots_[slot] != 0 && !Equal{}(*elements_[slots_[slot] - 1], element)) slot = (slot + 1) & mask;
        return slot;
    }

    void index() {
        std::size_t size = 16;
        while (size < (elements_.size() + 1) * 4) size *= 2;
        slots_.assign(size, 0);
        for (std::size_t i = 0; i < elements_.size(); ++i)
            slots_[slotOf(*elements_[i])] = static_cast<std::uint32_t>(i + 1);
    }

    std::vector<Shared> elements_;
    std::vector<std::uint32_t> slots_;  // open addressing; 0 is free, else place + 1
    std::uint64_t stamp_ = 0;
};

}  // namespace tarvix
