# Sourced: Slurm's own daemons for one run of a test, with everything that they keep in one folder
# and two processors of this machine as the cluster. Needs slurmctld, slurmd and munge.

slurm_pids=()

slurm_is_installed() {
    export PATH=$PATH:/usr/sbin:/sbin
    for program in munged slurmctld slurmd sbatch sinfo; do
        command -v "$program" >/dev/null || return 1
    done
}

slurm_free_port() {
    /usr/bin/python3 -c 'import socket; s = socket.socket(); s.bind(("", 0)); print(s.getsockname()[1])'
}

# slurm_start FOLDER: fails with the daemons' logs.
slurm_start() {
    slurm_folder=$1
    slurm_pids=()
    mkdir -p "$slurm_folder"/{state,spool}
    chmod 755 "$slurm_folder"
    (umask 077 && head -c 1024 /dev/urandom >"$slurm_folder/key")
    local host
    host=$(hostname -s)
    cat >"$slurm_folder/slurm.conf" <<CONF
ClusterName=test
SlurmctldHost=$host(127.0.0.1)
SlurmUser=$(id -un)
SlurmdUser=$(id -un)
AuthType=auth/munge
AuthInfo=socket=$slurm_folder/munge.socket
SlurmctldPort=$(slurm_free_port)
SlurmdPort=$(slurm_free_port)
StateSaveLocation=$slurm_folder/state
SlurmdSpoolDir=$slurm_folder/spool
SlurmctldPidFile=$slurm_folder/slurmctld.pid
SlurmdPidFile=$slurm_folder/slurmd.pid
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
JobAcctGatherType=jobacct_gather/none
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
SchedulerParameters=sched_interval=1,batch_sched_delay=0
ReturnToService=2
MailProg=/bin/true
NodeName=$host NodeAddr=127.0.0.1 CPUs=2 State=UNKNOWN
PartitionName=all Nodes=$host Default=YES MaxTime=INFINITE State=UP
CONF
    # Newer daemons need control groups, which a bare root does not mount; older ones lack the word.
    [ "$(slurmd -V | grep -oE '[0-9]+' | head -1)" -lt 24 ] || echo CgroupPlugin=disabled >"$slurm_folder/cgroup.conf"
    export SLURM_CONF=$slurm_folder/slurm.conf
    munged --foreground --force --key-file="$slurm_folder/key" --socket="$slurm_folder/munge.socket" \
        --pid-file="$slurm_folder/munge.pid" --seed-file="$slurm_folder/munge.seed" \
        --log-file="$slurm_folder/munge.log" >"$slurm_folder/munged.out" 2>&1 &
    slurm_pids+=($!)
    for _ in $(seq 100); do [ -S "$slurm_folder/munge.socket" ] && break || sleep 0.1; done
    slurmctld -D >"$slurm_folder/slurmctld.log" 2>&1 &
    slurm_pids+=($!)
    slurmd -D -N "$host" >"$slurm_folder/slurmd.log" 2>&1 &
    slurm_pids+=($!)
    for _ in $(seq 300); do
        [ "$(sinfo -h -o %t 2>/dev/null)" = idle ] && return
        sleep 0.1
    done
    tail -n 20 "$slurm_folder"/*.log "$slurm_folder"/*.out
    return 1
}

slurm_stop() {
    for pid in ${slurm_pids[@]+"${slurm_pids[@]}"}; do kill "$pid" 2>/dev/null || true; done
    wait ${slurm_pids[@]+"${slurm_pids[@]}"} 2>/dev/null || true
}
