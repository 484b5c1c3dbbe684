// The five pools that an interpreter's values live in.
#pragma once

#include "memory/pool.hpp"
#include "vm/payload.hpp"

namespace vorn {

struct vrn_value_pools {
  using callables = vrn_pool_threadsafe<vrnvar_ptr_function, vrn_pool_chunk_static>;
  using values_pool = vrn_pool_threadsafe<vrnvar, vrn_pool_chunk_dynamic>;
  using entries = vrn_pool_threadsafe<vrnjson, vrn_pool_chunk_dynamic>;
  using containers = vrn_pool_threadsafe<vrnvar_ptr_json, vrn_pool_chunk_static>;
  using texts = vrn_pool_threadsafe<vrnvar_ptr_str, vrn_pool_chunk_static>;

  explicit vrn_value_pools(const vrn_interpreter_mutex& mutex)
      : functions(&mutex), values(&mutex), json_values(&mutex), json(&mutex), strings(&mutex) {}

  void drain() {
    functions.drain();
    values.drain();
    json_values.drain();
    json.drain();
    strings.drain();
  }

  callables functions;
  values_pool values;
  entries json_values;
  containers json;
  texts strings;
};

static_assert(sizeof(void*) != 8 || sizeof(vrn_pool_chunk_dynamic<vrnvar>) == 4340);
static_assert(sizeof(void*) != 8 || sizeof(vrn_pool_chunk_dynamic<vrnjson>) == 14540);
static_assert(sizeof(void*) != 8 || sizeof(vrn_pool_chunk_static<vrnvar_ptr_json>) == 22956);
static_assert(sizeof(void*) != 8 || sizeof(vrn_pool_chunk_static<vrnvar_ptr_str>) == 8676);
static_assert(sizeof(void*) != 8 || sizeof(vrn_pool_chunk_static<vrnvar_ptr_function>) == 12504);

}  // namespace vorn
