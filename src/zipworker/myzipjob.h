#pragma once

#include <string>
#include <string_view>

namespace tessarin::myzip {

inline constexpr const char* kTodoFile = "myzip.todo.tmp";
inline constexpr const char* kFeedbackFile = "myzip.feedback.tmp";

// Splits a job text, "zipPath>fileSpec" or "zipPath,fileSpec", after stripping its framing: a
// leading '|', a '"' at the end and one at the start. '>' wins over ','; of several commas the
// first one counts. False when the text has neither separator.
bool ParseJob(std::string_view job, std::string& zipPath, std::string& fileSpec);

// One run of the worker: takes the job from `commandLine`, or from myzip.todo.tmp in
// `workerFolder` when the command line is empty, writes the zip, answers in
// myzip.feedback.tmp when the job came from the file, and deletes the todo file. Gives the
// process exit code: 0 when a zip was written, 1 otherwise.
int RunWorker(std::string_view commandLine, const std::string& workerFolder);

}  // namespace tessarin::myzip
