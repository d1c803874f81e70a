// The lock that every program holds while it writes to this controller.
#ifndef IPMI_SIM_WRITE_LOCK_H
#define IPMI_SIM_WRITE_LOCK_H

class WRITE_LOCK
{
  public:
    // Waits half a second at most: a client that waits longer for its answer sends the request again.
    WRITE_LOCK();
    ~WRITE_LOCK();
    WRITE_LOCK(const WRITE_LOCK &) = delete;
    WRITE_LOCK &operator=(const WRITE_LOCK &) = delete;
    bool Held() const
    {
        return m_iFd >= 0;
    }

  private:
    int m_iFd = -1;
};

#endif
