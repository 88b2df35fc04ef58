// Held<T>: owns one reference of a COM interface pointer and releases it at scope end.
#ifndef PELICOR_HOSTING_COM_HELD_H_
#define PELICOR_HOSTING_COM_HELD_H_

namespace com {

template <typename T>
class Held {
 public:
  Held() = default;
  Held(const Held&) = delete;
  Held& operator=(const Held&) = delete;
  ~Held() {
    if (p_ != nullptr) p_->Release();
  }
  // For the out parameter of a call that hands out a reference; the pointer must be empty.
  T** out() { return &p_; }
  T* get() const { return p_; }
  // Hands the reference to the caller.
  T* release() {
    T* p = p_;
    p_ = nullptr;
    return p;
  }

 private:
  T* p_ = nullptr;
};

}  // namespace com

#endif  // PELICOR_HOSTING_COM_HELD_H_
