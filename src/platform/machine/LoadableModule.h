#pragma once

/// A function of one of the engine's own modules: parts that stand on large libraries and are
/// loaded by the documents that need them. `module` is its name without folder and suffix. The
/// module is searched in the folder "paintengine" beside the shared library that this code is in,
/// then below the library folder of the prefix that the running program is in; it stays loaded
/// for the rest of the process. Null when it or the function is not there; std::bad_alloc when
/// there is no memory for it, as a document must not lose its text or pictures for that.
void* loadModuleFunction(const char* module, const char* function);

/// What that function answers, given that it takes nothing and answers the module's library; null
/// when it is not there. To be asked for once.
template <class Library>
const Library* loadModuleLibrary(const char* module, const char* function) {
  using Entry = const Library* (*)();
  const auto entry = reinterpret_cast<Entry>(loadModuleFunction(module, function));
  return entry == nullptr ? nullptr : entry();
}
