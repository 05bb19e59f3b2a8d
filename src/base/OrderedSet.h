// A collection of unique elements that keeps insertion order.
#pragma once

#include <algorithm>
#include <atomic>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <span>
#include <utility>
#include <vector>

namespace tarvix {

// Insertion order is iteration order, and the first of two equal elements stays. Lookup goes by hash and equality; an
// element that isn't equal to itself (a not-a-number coordinate) is never found and can be inserted again and again.
//
// Copies and subsets share the elements with the set they came from until one of them changes, so that they cost a few
// bytes for each element, however large the elements are. Different sets may be used on different threads, sharing or
// not.
template <class T, class Hash = std::hash<T>, class Equal = std::equal_to<T>>
class OrderedSet {
    struct Store {
        std::vector<T> elements;
        std::vector<std::size_t> hashes;
    };
    using Position = std::uint32_t;

public:
    class const_iterator;
    using value_type = T;

    OrderedSet() = default;
    OrderedSet(std::initializer_list<T> elements) {
        for (const T& element : elements) insert(element);
    }

    // Appends the element unless an equal one is already there; says whether it did.
    bool insert(T element) {
        if ((order_.size() + 1) * 2 > slots_.size()) rebuildSlots(std::max<std::size_t>(16, slots_.size() * 2));
        const std::size_t hash = Hash{}(element);
        const std::size_t slot = slotOf(element, hash);
        if (slots_[slot] != 0) return false;
        detach();
        order_.push_back(static_cast<Position>(store_->elements.size()));
        store_->elements.push_back(std::move(element));
        store_->hashes.push_back(hash);
        slots_[slot] = static_cast<Position>(order_.size());
        stamp_ = nextStamp();
        return true;
    }

    // Appends the other set's new elements in their order.
    void unite(const OrderedSet& other) {
        if (empty()) {
            *this = other;
            return;
        }
        for (const T& element : other) insert(element);
    }

    // The same with a set that isn't needed any more, whose elements are moved here unless others share them.
    void unite(OrderedSet&& other) {
        OrderedSet taken = std::exchange(other, OrderedSet());
        if (empty()) {
            *this = std::move(taken);
            return;
        }
        taken.detach();
        for (const Position position : taken.order_) insert(std::move(taken.store_->elements[position]));
    }

    bool contains(const T& element) const { return !slots_.empty() && slots_[slotOf(element, Hash{}(element))] != 0; }

    // The elements at these positions, in that order. No position may come twice.
    OrderedSet subset(std::span<const std::uint32_t> positions) const {
        OrderedSet some;
        if (positions.empty()) return some;
        some.store_ = store_;
        some.order_.reserve(positions.size());
        for (const std::uint32_t position : positions) some.order_.push_back(order_[position]);
        std::size_t slots = 16;
        while (slots < positions.size() * 2) slots *= 2;
        some.rebuildSlots(slots);
        some.stamp_ = nextStamp();
        return some;
    }

    void clear() { *this = OrderedSet(); }

    std::size_t size() const { return order_.size(); }
    bool empty() const { return order_.empty(); }
    const T& operator[](std::size_t index) const { return store_->elements[order_[index]]; }
    const T& front() const { return (*this)[0]; }
    const T& back() const { return (*this)[size() - 1]; }
    const_iterator begin() const { return {elements(), order_.data()}; }
    const_iterator end() const { return {elements(), order_.data() + order_.size()}; }

    // Two sets with the same stamp hold the same elements: a copy keeps its original's stamp, every change takes a new
    // one. 0 is the stamp of a set that never held anything. What is derived from a whole set can be kept under it.
    std::uint64_t stamp() const { return stamp_; }

    // Same elements in the same order.
    friend bool operator==(const OrderedSet& a, const OrderedSet& b) {
        return std::equal(a.begin(), a.end(), b.begin(), b.end(), Equal{});
    }

private:
    static std::uint64_t nextStamp() {
        static std::atomic<std::uint64_t> last = 0;
        return ++last;
    }

    const T* elements() const { return store_ ? store_->elements.data() : nullptr; }

    // Makes the store this set's alone before it grows. What other sets shared of it stays theirs.
    void detach() {
        if (!store_) {
            store_ = std::make_shared<Store>();
        } else if (store_.use_count() > 1) {
            auto own = std::make_shared<Store>();
            own->elements.reserve(order_.size() + 1);
            for (Position& position : order_) {
                own->elements.push_back(store_->elements[position]);
                own->hashes.push_back(store_->hashes[position]);
                position = static_cast<Position>(own->elements.size() - 1);
            }
            store_ = std::move(own);
        } else {
            // The last sharer may have let go on another thread; its reads are over before our writes.
            std::atomic_thread_fence(std::memory_order_acquire);
        }
    }

    // The slot that holds an element equal to this one, else the free slot where it belongs.
    std::size_t slotOf(const T& element, std::size_t hash) const {
        const std::size_t mask = slots_.size() - 1;
        std::size_t slot = hash & mask;
        while (slots_[slot] != 0 && !Equal{}((*this)[slots_[slot] - 1], element)) slot = (slot + 1) & mask;
        return slot;
    }

    // The elements are known to be unique, so that they need not be looked at.
    void rebuildSlots(std::size_t count) {
        slots_.assign(count, 0);
        const std::size_t mask = count - 1;
        for (std::size_t i = 0; i < order_.size(); ++i) {
            std::size_t slot = store_->hashes[order_[i]] & mask;
            while (slots_[slot] != 0) slot = (slot + 1) & mask;
            slots_[slot] = static_cast<Position>(i + 1);
        }
    }

    std::shared_ptr<Store> store_;  // what isn't named by order_ is another set's
    std::vector<Position> order_;   // positions in the store
    std::vector<Position> slots_;   // open addressing; 0 is free, else index in order_ + 1
    std::uint64_t stamp_ = 0;
};

template <class T, class Hash, class Equal>
class OrderedSet<T, Hash, Equal>::const_iterator {
public:
    using iterator_category = std::random_access_iterator_tag;
    using value_type = T;
    using difference_type = std::ptrdiff_t;
    using pointer = const T*;
    using reference = const T&;

    const_iterator() = default;
    const_iterator(const T* elements, const std::uint32_t* position) : elements_(elements), position_(position) {}

    reference operator*() const { return elements_[*position_]; }
    pointer operator->() const { return &**this; }
    reference operator[](difference_type n) const { return elements_[position_[n]]; }
    const_iterator& operator++() { return *this += 1; }
    const_iterator& operator--() { return *this -= 1; }
    const_iterator operator++(int) { return {elements_, position_++}; }
    const_iterator operator--(int) { return {elements_, position_--}; }
    const_iterator& operator+=(difference_type n) {
        position_ += n;
        return *this;
    }
    const_iterator& operator-=(difference_type n) { return *this += -n; }
    friend const_iterator operator+(const_iterator i, difference_type n) { return i += n; }
    friend const_iterator operator+(difference_type n, const_iterator i) { return i += n; }
    friend const_iterator operator-(const_iterator i, difference_type n) { return i -= n; }
    friend difference_type operator-(const_iterator a, const_iterator b) { return a.position_ - b.position_; }
    friend bool operator==(const_iterator a, const_iterator b) { return a.position_ == b.position_; }
    friend auto operator<=>(const_iterator a, const_iterator b) { return a.position_ <=> b.position_; }

private:
    const T* elements_ = nullptr;
    const std::uint32_t* position_ = nullptr;
};

}  // namespace tarvix
