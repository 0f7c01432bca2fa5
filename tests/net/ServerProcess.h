// veskserver as a program of its own, over the files of a folder, until it is killed.
#pragma once

#include "tests/net/KillVerdict.h"

#include <csignal>
#include <cstdint>
#include <fcntl.h>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace vesk {

class ServerProcess {
public:
    // `more` are words besides.
    ServerProcess(const std::string& program, const std::string& folder, std::uint16_t port,
                  const std::vector<std::string>& more) {
        int in[2], out[2];
        Demand(pipe2(in, O_CLOEXEC) == 0 && pipe2(out, O_CLOEXEC) == 0, "no pipes");
        const std::string number = std::to_string(port), errors = folder + "/server.log";
        const int file = open(errors.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
        m_id = fork();
        if (m_id == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            dup2(in[0], 0), dup2(out[1], 1), dup2(file, 2);
            std::vector<std::string> words{program, "--port", number, "--data", folder};
            words.insert(words.end(), more.begin(), more.end());
            std::vector<char*> arguments;
            for (std::string& word : words)
                arguments.push_back(word.data());
            arguments.push_back(nullptr);
            execv(program.c_str(), arguments.data());
            _exit(127);
        }
        close(in[0]), close(out[1]), close(file);
        m_input = in[1], m_output = out[0];
        std::string line;
        for (char byte = 0; byte != '\n' && read(m_output, &byte, 1) == 1;)
            line += byte;
        Demand(line.starts_with("listening on 127.0.0.1:"), "the server did not start");
        m_port = static_cast<std::uint16_t>(std::stoul(line.substr(line.rfind(':') + 1)));
    }
    ServerProcess(const ServerProcess&) = delete;
    ServerProcess& operator=(const ServerProcess&) = delete;
    ~ServerProcess() {
        int state = 0;
        kill(m_id, SIGKILL);
        waitpid(m_id, &state, 0);
        close(m_input), close(m_output);
        Demand(WIFSIGNALED(state) && WTERMSIG(state) == SIGKILL, "the server ended before it was killed");
    }
    std::uint16_t Port() const { return m_port; }

private:
    pid_t m_id = 0;
    int m_input = -1, m_output = -1;
    std::uint16_t m_port = 0;
};

} // namespace vesk
