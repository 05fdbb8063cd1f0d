#include <base/rnGaussianRng.imp>

namespace Kr
{

template class RnGaussianRng<float>;
template class RnGaussianRng<double>;

} // namespace Kr
