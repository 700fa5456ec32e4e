// SPDX-License-Identifier: MIT
#pragma once

// The signal and slot interface the host's manager uses for its notifications,
// implemented over Boost.Signals2. Connecting, disconnecting and emitting may happen on
// different threads at the same time: every signal guards its slot list with its own mutex.
// An emission that begins after disconnect() has returned never calls the slot. An emission
// already running on another thread may still call it, even after disconnect() has returned,
// because no lock is held while a slot runs.

// GCC 12 at -O3 reports boost::function's small-object buffer as used uninitialized when a
// slot is moved into place: a false positive inside Boost that would break -Werror builds of
// every program that connects a slot.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wuninitialized"
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <boost/signals2/connection.hpp>
#include <boost/signals2/signal.hpp>
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic pop
#endif

#include <functional>
#include <type_traits>
#include <utility>

namespace sigslot {

/// Handle of one connection between a signal and a slot. Copyable; copies refer to the same
/// connection. Destroying a handle leaves the connection in place. Any thread.
class connection
{
public:
    /// An empty handle, connected to nothing.
    connection() = default;

    /// Wraps a Boost connection; used by signal::connect.
    explicit connection(boost::signals2::connection impl)
        : m_impl(std::move(impl))
    {}

    /// Breaks the connection; the slot is not called by later emissions. Idempotent.
    void disconnect() { m_impl.disconnect(); }

    /// True while the slot is still connected to a signal that exists.
    bool connected() const { return m_impl.connected(); }

private:
    boost::signals2::connection m_impl;
};

/// A connection that is broken when the handle is destroyed or reassigned. Move-only.
class scoped_connection
{
public:
    /// An empty handle, connected to nothing.
    scoped_connection() = default;

    /// Takes over the given connection; it is broken when this handle goes.
    /// Implicit, so that `scoped_connection c = signal.connect(...);` reads naturally.
    scoped_connection(connection c) // NOLINT(google-explicit-constructor)
        : m_impl(std::move(c))
    {}

    scoped_connection(scoped_connection&& other) noexcept
        : m_impl(std::exchange(other.m_impl, connection{}))
    {}

    scoped_connection& operator=(scoped_connection&& other) noexcept
    {
        if (this != &other) {
            m_impl.disconnect();
            m_impl = std::exchange(other.m_impl, connection{});
        }
        return *this;
    }

    scoped_connection(const scoped_connection&) = delete;
    scoped_connection& operator=(const scoped_connection&) = delete;

    ~scoped_connection() { m_impl.disconnect(); }

    /// Breaks the connection now.
    void disconnect() { m_impl.disconnect(); }

    /// True while the slot is still connected.
    bool connected() const { return m_impl.connected(); }

    /// Gives up ownership: the connection stays when this handle is destroyed.
    connection release() { return std::exchange(m_impl, connection{}); }

private:
    connection m_impl;
};

/// A signal carrying Args... to every connected slot, in the order of connection. Arguments
/// declared as references (const or not) reach the slots as the same object, so a slot can
/// answer through a `bool&` out-flag. Non-copyable. Any thread.
template <typename... Args>
class signal
{
public:
    signal() = default;
    signal(const signal&) = delete;
    signal& operator=(const signal&) = delete;

    /// Connects any callable that accepts Args...; returns the handle to disconnect it.
    template <typename Callable>
    connection connect(Callable&& callable)
    {
        static_assert(std::is_invocable_v<Callable&, Args&...>,
                      "the slot cannot be called with the arguments of this signal");
        return connection(m_impl.connect(std::forward<Callable>(callable)));
    }

    /// Connects the member function `method` of `object` (a raw or smart pointer). A raw
    /// pointer's object must outlive every emission that may still call it (see above); a
    /// std::shared_ptr is held by the connection until it is disconnected.
    template <typename Method, typename Object,
              typename = std::enable_if_t<std::is_member_function_pointer_v<Method>>>
    connection connect(Method method, Object object)
    {
        static_assert(std::is_invocable_v<Method, Object&, Args&...>,
                      "the member function cannot be called with the arguments of this signal");
        return connection(m_impl.connect(
            [method, object](Args... args) { std::invoke(method, object, args...); }));
    }

    /// Calls every connected slot with the given arguments, on the calling thread.
    void operator()(Args... args) const { m_impl(args...); }

    /// Disconnects every slot.
    void disconnect_all_slots() { m_impl.disconnect_all_slots(); }

    /// Number of connected slots.
    std::size_t slot_count() const { return m_impl.num_slots(); }

private:
    mutable boost::signals2::signal<void(Args...)> m_impl;
};

} // namespace sigslot
