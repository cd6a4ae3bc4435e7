#pragma once

namespace velm_tools {

// A visitor for std::visit made of one lambda per alternative.
template <typename... Handlers>
struct Overloaded : Handlers... {
  using Handlers::operator()...;
};

}  // namespace velm_tools
