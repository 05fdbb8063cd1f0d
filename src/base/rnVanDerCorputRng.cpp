#include <base/rnVanDerCorputRng.imp>

namespace Kr
{

template class RnVanDerCorputRng<float>;
template class RnVanDerCorputRng<double>;

} // namespace Kr
