#include "batch/WorkerPool.h"

#include <Tellurion/Numbers.h>

#include <poll.h>
#include <algorithm>
#include <stdexcept>

namespace Tool {

WorkerPool::WorkerPool(int count, Answer answer, const Limits& limits, std::vector<int> strangers)
    : answer_(std::move(answer)), limits_(limits), strangers_(std::move(strangers)) {
    for (int i = 0; i < count; ++i) {
        seats_.push_back(std::make_unique<Seat>());
        Hire(*seats_.back());
    }
}

WorkerPool::Seat* WorkerPool::FindFree() const {
    const auto found =
        std::find_if(seats_.begin(), seats_.end(), [](const auto& seat) { return !seat->job; });
    return found == seats_.end() ? nullptr : found->get();
}

bool WorkerPool::IsIdle() const {
    return std::none_of(seats_.begin(), seats_.end(), [](const auto& seat) { return seat->job.has_value(); });
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

/// A worker may have died while it had nothing to do; no job pays for that.
void WorkerPool::Give(Job job) {
    Seat& seat = *FindFree();
    if (!seat.worker->Give(job.name)) {
        Hire(seat);
        if (!seat.worker->Give(job.name)) throw std::runtime_error("no worker process stays alive");
    }
    const auto limit = std::chrono::duration<double>(limits_.seconds);
    seat.deadline = Clock::now() + std::chrono::duration_cast<Clock::duration>(limit);
    seat.job = std::move(job);
}

JobOutcome WorkerPool::Lose(Seat& seat, bool timed_out) {
    JobOutcome outcome;
    outcome.job = std::move(*seat.job);
    seat.job.reset();
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
    return outcome;
}

std::optional<JobOutcome> WorkerPool::Look(Seat& seat, bool is_readable) {
    using State = TextReceiver::State;
    const State state = is_readable ? seat.worker->Receive() : State::Waiting;
    if (state == State::Ended) return Lose(seat, false);
    if (state == State::Waiting)
        return Clock::now() < seat.deadline ? std::nullopt : std::optional(Lose(seat, true));
    JobOutcome outcome;
    outcome.job = std::move(*seat.job);
    outcome.answer = seat.worker->TakeAnswer();
    seat.job.reset();
    return outcome;
}

int WorkerPool::PollTime(std::chrono::milliseconds wait) const {
    const auto now = Clock::now();
    for (const auto& seat : seats_) {
        if (!seat->job) continue;
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(seat->deadline - now);
        wait = std::clamp(left, std::chrono::milliseconds(0), wait);
    }
    return static_cast<int>(wait.count());
}

std::vector<JobOutcome> WorkerPool::Wait(int descriptor, std::chrono::milliseconds wait) {
    std::vector<pollfd> polled;
    std::vector<Seat*> busy;
    for (const auto& seat : seats_) {
        if (!seat->job) continue;
        busy.push_back(seat.get());
        polled.push_back({seat->worker->AnswerDescriptor(), POLLIN, 0});
    }
    if (descriptor >= 0) polled.push_back({descriptor, POLLIN, 0});
    if (poll(polled.data(), polled.size(), PollTime(wait)) < 0) return {};
    std::vector<JobOutcome> outcomes;
    for (std::size_t i = 0; i < busy.size(); ++i)
        if (auto outcome = Look(*busy[i], polled[i].revents != 0)) outcomes.push_back(std::move(*outcome));
    return outcomes;
}

}  // namespace Tool
