#include <base/rnNumRecUniformRng.imp>

namespace Kr
{

template class RnNumRecUniformRng<float>;
template class RnNumRecUniformRng<double>;

} // namespace Kr
