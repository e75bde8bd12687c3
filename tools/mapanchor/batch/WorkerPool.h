#pragma once

#include "batch/Worker.h"
#include "read/Failure.h"

#include <deque>
#include <memory>
#include <optional>

namespace Tool {

struct Job {
    std::uint64_t number = 0;  ///< of the input, from 0
    std::string name;
};

/// What became of a job: its answer, or why there is none.
struct JobOutcome {
    Job job;
    std::string answer;
    std::optional<FailureType> loss;  ///< a timeout, want of memory or a crash; empty with an answer
    std::string loss_detail;          ///< a sentence
};

/// A fixed number of workers. One that is lost is replaced, and costs the job that it worked at;
/// the jobs that wait behind that one are done by its successor.
class WorkerPool {
public:
    /// Workers close `strangers`, descriptors that are not theirs.
    WorkerPool(int count, Answer answer, const Limits& limits, std::vector<int> strangers);

    /// True when the next job has a place: with a worker that has nothing to do or, while jobs
    /// are quick, behind others.
    bool HasFree() const { return FindFree() != nullptr; }
    bool IsIdle() const;
    /// Where there is a place.
    void Give(Job job);
    /// What ends within `wait`; returns early when `descriptor` (-1 for none) can be read.
    std::vector<JobOutcome> Wait(int descriptor, std::chrono::milliseconds wait);

private:
    using Clock = std::chrono::steady_clock;
    struct Seat {
        std::unique_ptr<Worker> worker;
        std::deque<Job> jobs;           ///< the worker is at the first one
        std::size_t waiting_bytes = 0;  ///< of their names
        Clock::time_point begin;        ///< of the first one
        Clock::time_point deadline;     ///< of the first one
        bool is_quick = false;
    };

    Seat* FindFree() const;
    void Hire(Seat& seat);
    void StartClock(Seat& seat);
    Job TakeFirst(Seat& seat);
    JobOutcome Lose(Seat& seat, bool timed_out);
    void Look(Seat& seat, bool is_readable, std::vector<JobOutcome>& outcomes);
    void LetAnswersGather() const;
    int PollTime(std::chrono::milliseconds wait) const;

    Answer answer_;
    Limits limits_;
    std::vector<int> strangers_;
    std::vector<std::unique_ptr<Seat>> seats_;
};

}  // namespace Tool
