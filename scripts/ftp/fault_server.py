import sys,os
open(os.path.join(sys.argv[1],"fault.ports"),"w").write("x 1\n")
import time; time.sleep(1000)
