#pragma once

// A loop body, as a reference to whatever the caller has written: a lambda, mostly. Unlike a
// std::function it owns nothing, so that work can be split when memory is short. It must not
// outlive the call that it is handed to.
template <typename... Numbers>
class LoopBody
{
public:
    template <typename Body>
    LoopBody(const Body& written) : body(&written), call(&Call<Body>)
    {
    }

    void operator()(Numbers... numbers) const { call(body, numbers...); }

private:
    template <typename Body>
    static void Call(const void* body, Numbers... numbers)
    {
        (*static_cast<const Body*>(body))(numbers...);
    }

    const void* body;
    void (*call)(const void* body, Numbers... numbers);
};

// Splits the rows [0, rows) into ranges over the task pool and waits for all of them. Small planes
// (by rows * rowSamples) run on the calling thread. The function may throw std::bad_alloc, which
// arrives at the caller, and must not write outside its own rows.
void VcParallelRows(int rows, int rowSamples, const LoopBody<int, int>& rowRange);

// Limits the whole process to that many working threads; 0 lifts the limit. Call it while nothing
// runs.
void VcLimitThreads(int threads);
