// The growable one-dimensional array on which every list of the library stands. It never throws:
// without memory it reports the failure and ends the process.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <memory>
#include <new>
#include <utility>

#include "base/ReportFatalError.h"

// Owns its elements. The count says how many are in use, the capacity how many are constructed
// (all of the storage is). Pointers kept in a table are not deleted by it.
template <typename T>
class CTable1D {
public:
    CTable1D() { CTable1D::SetSize(0, true); }
    CTable1D(const CTable1D&) = delete;
    CTable1D& operator=(const CTable1D&) = delete;
    CTable1D(CTable1D&& other) noexcept { TakeFrom(other); }
    CTable1D& operator=(CTable1D&& other) noexcept {
        if (this != &other) {
            FreeStorage();
            TakeFrom(other);
        }
        return *this;
    }
    virtual ~CTable1D() { FreeStorage(); }

    // Makes capacity and count n, with the first elements kept on request. A size that is the
    // capacity only changes the count; one below 1 frees the storage.
    virtual void SetSize(std::int64_t n, bool keep) {
        if (n == m_capacity) {
            m_count = n;
            return;
        }
        if (n < 1) {
            FreeStorage();
            GrowBy = InitialGrowBy;
            return;
        }
        T* const storage = Allocate(n);
        const std::int64_t kept = keep ? (m_count < n ? m_count : n) : 0;
        std::uninitialized_move_n(m_data, kept, storage);
        std::uninitialized_default_construct_n(storage + kept, n - kept);
        FreeStorage();
        m_data = storage;
        m_count = n;
        m_capacity = n;
    }

    void Add(const T& element) {
        if (IsInside(element)) {
            Append(T(element));
        } else {
            Append(element);
        }
    }

    // Only for a table that is not empty. The storage stays.
    void RemoveLast() {
        const std::int64_t newCount = m_count - 1;
        GrowTo(newCount, true);
        m_count = newCount;
    }

    // Makes the capacity n, at least the count, and keeps the elements and the count.
    void Reserve(std::int64_t n) {
        const std::int64_t count = m_count;
        SetSize(n, true);
        m_count = count;
    }

    // The index is not checked.
    T& operator[](std::int64_t index) { return m_data[index]; }
    const T& operator[](std::int64_t index) const { return m_data[index]; }

    std::int64_t Count() const { return m_count; }
    std::int64_t Capacity() const { return m_capacity; }
    T* Data() { return m_data; }
    const T* Data() const { return m_data; }

    T* begin() { return m_data; }
    T* end() { return m_data + m_count; }
    const T* begin() const { return m_data; }
    const T* end() const { return m_data + m_count; }

protected:
    // Raises the capacity to newCount rounded up to a multiple of GrowBy, if it is smaller.
    void GrowTo(std::int64_t newCount, bool keep) {
        if (newCount <= m_capacity) {
            return;
        }
        const std::int64_t newCapacity = ((GrowBy - 1 + newCount) / GrowBy) * GrowBy;
        if (newCapacity > GrowBy) {
            GrowBy = GrowthFactor * GrowBy;
        }
        SetSize(newCapacity, keep);
    }

    T* m_data = nullptr;
    std::int64_t m_count = 0;
    std::int64_t m_capacity = 0;
    // By one, a new storage with each element that is added: docs/quirks.md.
    std::int64_t GrowBy = 1;
    std::int64_t InitialGrowBy = 1;
    std::int64_t GrowthFactor = 1;

private:
    static_assert(alignof(T) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__);

    bool IsInside(const T& element) const {
        const std::less<const T*> before;
        return !before(&element, m_data) && before(&element, m_data + m_capacity);
    }

    void Append(const T& element) {
        const std::int64_t newCount = m_count + 1;
        GrowTo(newCount, true);
        m_count = newCount;
        m_data[newCount - 1] = element;
    }

    static T* Allocate(std::int64_t n) {
        const auto elements = static_cast<std::size_t>(n);
        const std::size_t size =
            sizeof(T); // NOLINT(bugprone-sizeof-expression): T may be a pointer
        const std::size_t bytes = elements > SIZE_MAX / size ? SIZE_MAX : elements * size;
        void* const storage = ::operator new(bytes, std::nothrow);
        if (storage == nullptr) {
            ReportFatalError(L"Not enough heap memory to process.", L"Fatal memory error.", 0);
            std::_Exit(1);
        }
        return static_cast<T*>(storage);
    }

    void FreeStorage() {
        std::destroy_n(m_data, m_capacity);
        ::operator delete(m_data);
        m_data = nullptr;
        m_count = 0;
        m_capacity = 0;
    }

    void TakeFrom(CTable1D& other) {
        m_data = std::exchange(other.m_data, nullptr);
        m_count = std::exchange(other.m_count, 0);
        m_capacity = std::exchange(other.m_capacity, 0);
        GrowBy = other.GrowBy;
        InitialGrowBy = other.InitialGrowBy;
        GrowthFactor = other.GrowthFactor;
        other.GrowBy = other.InitialGrowBy;
    }
};

// Takes the last pointer out of the table and deletes what it points to, until none is left: for
// the owners of what a table's pointers point to.
template <typename T>
void DeleteAll(CTable1D<T*>& table) {
    while (table.Count() != 0) {
        const T* const last = table[table.Count() - 1];
        table.RemoveLast();
        delete last;
    }
}
