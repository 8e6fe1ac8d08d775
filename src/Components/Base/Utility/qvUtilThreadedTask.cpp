#include "Base/Utility/qvUtilThreadedTask.h"

#include "Base/Utility/qvUtilThreadPool.h"

namespace qvUtil {

ThreadedTask::~ThreadedTask() = default;
ThreadedTask* ThreadedTask::preExecute(int) { return nullptr; }
void ThreadedTask::execute(int) {}
ThreadedTask* ThreadedTask::postExecute(int) { return nullptr; }

int ThreadedTask::getNumThreads() const noexcept { return ThreadPool::get()->numThreads(); }

} // namespace qvUtil
