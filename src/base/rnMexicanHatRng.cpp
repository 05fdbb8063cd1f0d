#include <base/rnMexicanHatRng.imp>

namespace Kr
{

template class RnMexicanHatRng<float>;
template class RnMexicanHatRng<double>;

} // namespace Kr
