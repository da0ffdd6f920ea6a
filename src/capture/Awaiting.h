#pragma once

#include "base/Executor.h"
#include "base/SerialQueue.h"

#include <coroutine>
#include <functional>
#include <optional>
#include <type_traits>
#include <utility>

namespace tavi {

/// Lets a coroutine of the main thread wait for a callback: `co_await Called<T>(start)` calls
/// `start` with a function that takes the result, from whatever thread and exactly once, and
/// goes on with that result when `main` runs the next blocks.
template<typename T>
class Called {
public:
    using Resume = std::function<void(T)>;

    Called(Executor& main, std::function<void(Resume)> start)
        : m_main(main),
          m_start(std::move(start)) {}

    bool await_ready() const { return false; }
    void await_suspend(std::coroutine_handle<> waiting) {
        m_start([this, waiting](T result) {
            m_result = std::move(result);
            m_main.post([waiting] { waiting.resume(); });
        });
    }
    T await_resume() { return std::move(*m_result); }

private:
    Executor& m_main;
    std::function<void(Resume)> m_start;
    std::optional<T> m_result;
};

/// Lets a coroutine of the main thread wait for work that blocks: `co_await
/// onQueue(queue, main, block)` runs `block` on the queue and goes on with its result.
template<typename Block>
auto onQueue(SerialQueue& queue, Executor& main, Block block) {
    using T = std::invoke_result_t<Block&>;
    return Called<T>(
        main, [&queue, block = std::move(block)](const typename Called<T>::Resume& resume) mutable {
            queue.post([block = std::move(block), resume]() mutable { resume(block()); });
        });
}

} // namespace tavi
