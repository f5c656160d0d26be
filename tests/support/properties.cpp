#include "tests/support/properties.h"

namespace rc {

template void detail::checkGTest<void (*)()>(void (*&&)());

template class Gen<bool>;
template class Gen<int>;
template class Gen<std::int64_t>;
template class Gen<std::size_t>;
template class Gen<std::string>;
template class Gen<std::u16string>;
template class Gen<std::vector<std::u16string>>;
template class Gen<std::vector<std::vector<std::u16string>>>;

namespace gen {

template Gen<bool> arbitrary<bool>();
template Gen<std::int64_t> arbitrary<std::int64_t>();
template Gen<int> inRange(int, int);
template Gen<std::int64_t> inRange(std::int64_t, std::int64_t);
template Gen<std::size_t> inRange(std::size_t, std::size_t);
template Gen<std::u16string> elementOf(std::vector<std::u16string>&&);
template Gen<std::u16string> container<std::u16string>(Gen<char16_t>);
template Gen<std::vector<std::u16string>> container<std::vector<std::u16string>>(
    Gen<std::u16string>);
template Gen<std::vector<std::vector<std::u16string>>>
    container<std::vector<std::vector<std::u16string>>>(Gen<std::vector<std::u16string>>);

}  // namespace gen

}  // namespace rc
