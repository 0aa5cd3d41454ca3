// kiv::Array<T>: the common runtime's growable array. Header-only; a thin, bounds-checked
// wrapper over std::vector so that DLL boundaries see one layout.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <stdexcept>
#include <vector>

namespace kiv {

template <typename T>
class Array {
public:
    Array() = default;
    explicit Array(std::size_t size) : items_(size) {}
    Array(std::size_t size, const T& fill) : items_(size, fill) {}
    Array(std::initializer_list<T> items) : items_(items) {}

    std::size_t size() const { return items_.size(); }
    bool isEmpty() const { return items_.empty(); }

    // Throws std::out_of_range on an index past the end.
    T& operator[](std::size_t i) { return items_.at(i); }
    const T& operator[](std::size_t i) const { return items_.at(i); }

    void add(const T& item) { items_.push_back(item); }
    void add(T&& item) { items_.push_back(std::move(item)); }
    void resize(std::size_t size) { items_.resize(size); }
    void clear() { items_.clear(); }

    T* data() { return items_.data(); }
    const T* data() const { return items_.data(); }

    auto begin() { return items_.begin(); }
    auto end() { return items_.end(); }
    auto begin() const { return items_.begin(); }
    auto end() const { return items_.end(); }

    bool operator==(const Array& other) const = default;

private:
    std::vector<T> items_;
};

}  // namespace kiv
