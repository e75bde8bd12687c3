#include "batch/WorkerPool.h"

#include <Tellurion/Numbers.h>

#include <poll.h>
#include <algorithm>
#include <stdexcept>
#include <thread>

namespace Tool {

namespace {

/// Of one worker: enough that it need not wait for the next name.
constexpr std::size_t kMaxJobs = 32;
/// Jobs that wait behind a slower one may be better off with another worker.
constexpr std::chrono::milliseconds kQuick(5);

}  // namespace

WorkerPool::WorkerPool(int count, Answer answer, const Limits& limits, std::vector<int> strangers)
    : answer_(std::move(answer)), limits_(limits), strangers_(std::move(strangers)) {
    for (int i = 0; i < count; ++i) {
        seats_.push_back(std::make_unique<Seat>());
        Hire(*seats_.back());
    }
}

/// The worker with the fewest jobs, where it can have one more.
WorkerPool::Seat* WorkerPool::FindFree() const {
    constexpr std::size_t kMaxBytes = 16384;  // far less than a pipe holds, so that no write to it waits
    const auto found = std::min_element(seats_.begin(), seats_.end(), [](const auto& a, const auto& b) {
        return a->jobs.size() < b->jobs.size();
    });
    const Seat& seat = **found;
    const bool has_place =
        seat.jobs.empty() || (seat.is_quick && seat.jobs.size() < kMaxJobs && seat.waiting_bytes < kMaxBytes);
    return has_place ? found->get() : nullptr;
}

bool WorkerPool::IsIdle() const {
    return std::all_of(seats_.begin(), seats_.end(), [](const auto& seat) { return seat->jobs.empty(); });
}

void WorkerPool::Hire(Seat& seat) {
    seat.worker.reset();
    std::vector<int> strangers = strangers_;
    for (const auto& other : seats_) {
        if (!other->worker) continue;
        const std::vector<int> theirs = other->worker->Descriptors();
        strangers.insert(strangers.end(), theirs.begin(), theirs.end());
    }
    seat.worker = std::make_unique<Worker>(answer_, limits_, strangers);
}

void WorkerPool::StartClock(Seat& seat) {
    const auto limit = std::chrono::duration<double>(limits_.seconds);
    seat.begin = Clock::now();
    seat.deadline = seat.begin + std::chrono::duration_cast<Clock::duration>(limit);
}

/// A worker may have died while it had nothing to do; no job pays for that. One that died at a
/// job gets nothing more, and its successor this one.
void WorkerPool::Give(Job job) {
    Seat& seat = *FindFree();
    if (!seat.worker->Give(job.name) && seat.jobs.empty()) {
        Hire(seat);
        if (!seat.worker->Give(job.name)) throw std::runtime_error("no worker process stays alive");
    }
    if (seat.jobs.empty()) StartClock(seat);
    seat.waiting_bytes += job.name.size();
    seat.jobs.push_back(std::move(job));
}

Job WorkerPool::TakeFirst(Seat& seat) {
    Job job = std::move(seat.jobs.front());
    seat.jobs.pop_front();
    seat.waiting_bytes -= job.name.size();
    seat.is_quick = Clock::now() - seat.begin < kQuick;
    StartClock(seat);
    return job;
}

JobOutcome WorkerPool::Lose(Seat& seat, bool timed_out) {
    JobOutcome outcome;
    outcome.job = TakeFirst(seat);
    seat.is_quick = false;
    const std::string end = seat.worker->End();
    if (timed_out) {
        outcome.loss = FailureTypes::kTimeout;
        outcome.loss_detail = "Not done within " + Tellurion::PrintShortest(limits_.seconds) + " seconds.";
    } else if (seat.worker->EndedForMemory()) {
        outcome.loss = FailureTypes::kOutOfMemory;
        outcome.loss_detail = "The memory allowed for a file is not enough.";
    } else {
        outcome.loss = FailureTypes::kCrash;
        outcome.loss_detail = "The reading process ended by " + end + ".";
    }
    Hire(seat);
    for (const Job& job : seat.jobs)
        if (!seat.worker->Give(job.name)) throw std::runtime_error("no worker process stays alive");
    return outcome;
}

void WorkerPool::Look(Seat& seat, bool is_readable, std::vector<JobOutcome>& outcomes) {
    using State = TextReceiver::State;
    const State state = is_readable ? seat.worker->Receive() : State::Waiting;
    if (state == State::Ended) return outcomes.push_back(Lose(seat, false));
    if (state == State::Waiting && Clock::now() >= seat.deadline) return outcomes.push_back(Lose(seat, true));
    while (!seat.jobs.empty() && seat.worker->HasAnswer()) {
        JobOutcome outcome;
        outcome.job = TakeFirst(seat);
        outcome.answer = seat.worker->TakeAnswer();
        outcomes.push_back(std::move(outcome));
    }
}

/// Waking up for each answer would cost more than some answers do.
void WorkerPool::LetAnswersGather() const {
    constexpr std::chrono::microseconds kPause(300);
    const bool is_busy = std::all_of(seats_.begin(), seats_.end(),
                                     [](const auto& seat) { return seat->jobs.size() > kMaxJobs / 2; });
    if (is_busy) std::this_thread::sleep_for(kPause);
}

int WorkerPool::PollTime(std::chrono::milliseconds wait) const {
    const auto now = Clock::now();
    for (const auto& seat : seats_) {
        if (seat->jobs.empty()) continue;
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(seat->deadline - now);
        wait = std::clamp(left, std::chrono::milliseconds(0), wait);
    }
    return static_cast<int>(wait.count());
}

std::vector<JobOutcome> WorkerPool::Wait(int descriptor, std::chrono::milliseconds wait) {
    LetAnswersGather();
    std::vector<pollfd> polled;
    std::vector<Seat*> busy;
    for (const auto& seat : seats_) {
        if (seat->jobs.empty()) continue;
        busy.push_back(seat.get());
        polled.push_back({seat->worker->AnswerDescriptor(), POLLIN, 0});
    }
    if (descriptor >= 0) polled.push_back({descriptor, POLLIN, 0});
    if (poll(polled.data(), polled.size(), PollTime(wait)) < 0) return {};
    std::vector<JobOutcome> outcomes;
    for (std::size_t i = 0; i < busy.size(); ++i)
        Look(*busy[i], polled[i].revents != 0, outcomes);
    return outcomes;
}

}  // namespace Tool
