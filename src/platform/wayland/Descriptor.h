#pragma once

#include <unistd.h>

#include <utility>

/// Closes a file descriptor with its holder.
class Descriptor {
public:
    explicit Descriptor(int number = -1) : m_number(number) {}
    ~Descriptor() {
        if (m_number >= 0)
            close(m_number);
    }
    Descriptor(Descriptor &&other) noexcept : m_number(std::exchange(other.m_number, -1)) {}
    Descriptor &operator=(Descriptor &&other) noexcept {
        std::swap(m_number, other.m_number);
        return *this;
    }

    int number() const { return m_number; }

private:
    int m_number;
};
