#pragma once
// RapidCheck in GoogleTest. Its templates take long to compile, so what most properties use of
// them is compiled once, in properties.cpp. Properties take no parameters and draw their values
// themselves: each list of parameters would be compiled anew.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace rc {

extern template void detail::checkGTest<void (*)()>(void (*&&)());

extern template class Gen<bool>;
extern template class Gen<int>;
extern template class Gen<std::int64_t>;
extern template class Gen<std::size_t>;
extern template class Gen<std::string>;
extern template class Gen<std::u16string>;
extern template class Gen<std::vector<std::u16string>>;
extern template class Gen<std::vector<std::vector<std::u16string>>>;

namespace gen {

extern template Gen<bool> arbitrary<bool>();
extern template Gen<std::int64_t> arbitrary<std::int64_t>();
extern template Gen<int> inRange(int, int);
extern template Gen<std::int64_t> inRange(std::int64_t, std::int64_t);
extern template Gen<std::size_t> inRange(std::size_t, std::size_t);
extern template Gen<std::u16string> elementOf(std::vector<std::u16string>&&);
extern template Gen<std::u16string> container<std::u16string>(Gen<char16_t>);
extern template Gen<std::vector<std::u16string>> container<std::vector<std::u16string>>(
    Gen<std::u16string>);
extern template Gen<std::vector<std::vector<std::u16string>>>
    container<std::vector<std::vector<std::u16string>>>(Gen<std::vector<std::u16string>>);

}  // namespace gen

}  // namespace rc
