#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace torvane {

/// A job's result, computed in a process of the machine's choice; nothing when the process is to
/// end.
using Work = std::function<std::optional<std::string>(std::size_t job)>;
/// Takes the results, in the order of the jobs.
using TakeResult = std::function<void(std::size_t job, const std::string& result)>;

/// Does the jobs in as many processes at a time, copies of this one, which share nothing with it
/// from then on: what a job leaves behind reaches only later jobs of the same process. Asks several
/// times a second whether to go on. A process that dies, or a no, is a StudyFault; the processes
/// end with the call however it ends, and with this process however that ends.
void DoInWorkers(const std::vector<std::size_t>& jobs, int processes, const Work& work,
                 const TakeResult& take, const std::function<bool()>& goOn);

}  // namespace torvane
