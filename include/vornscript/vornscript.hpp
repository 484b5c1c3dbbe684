// vornscript: a small scripting language to embed. This header is all that a host includes.
//
//   auto logger = std::make_shared<vorn::vrn_log_default>();
//   vorn::vrnscript script({std::make_shared<vorn::vrn_filesys_os>(), logger});
//   vorn::vrn_program_loader loader(script);
//   vorn::vrn_program program = loader.create_program("hello.vrs");
//   if (!program) return 1;
//   auto task = vorn::task_create(program);
//   vorn::task_run(*task, 0);
//   while (task->active) script.tick();
#pragma once

#include <vornscript/clock.hpp>
#include <vornscript/filesys.hpp>
#include <vornscript/inspect.hpp>
#include <vornscript/language.hpp>
#include <vornscript/log.hpp>
#include <vornscript/log_default.hpp>
#include <vornscript/native.hpp>
#include <vornscript/program_block.hpp>
#include <vornscript/program_loader.hpp>
#include <vornscript/ref.hpp>
#include <vornscript/report.hpp>
#include <vornscript/std_function.hpp>
#include <vornscript/task.hpp>
#include <vornscript/thread_state.hpp>
#include <vornscript/value.hpp>
#include <vornscript/version.hpp>
#include <vornscript/vrnptr.hpp>
#include <vornscript/vrnscript.hpp>
