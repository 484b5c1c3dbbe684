// The scheduler: runs the tasks of an interpreter when they are due.
#pragma once

namespace vorn {

struct vrnscript_state;

// Runs every task that is due, in the order of their due times. Called under the interpreter's
// lock. Refused with a line, and false, while it is going on or a task is running.
bool run_due_tasks(vrnscript_state& state);

}  // namespace vorn
